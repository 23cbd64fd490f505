#include "logic/helper/helper_identity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace brindle {
namespace {

const std::string kApp = BRINDLE_APP_ID;
const std::string kTeam = BRINDLE_TEAM_ID;

TEST(HelperIdentity, BuildsEveryNameFromTheTwoIdentifiers) {
  EXPECT_EQ(HelperIdentity::teamID, kTeam);
  EXPECT_EQ(HelperIdentity::appBundleID, kApp);
  EXPECT_EQ(HelperIdentity::helperLabel, kApp + ".helper");
  EXPECT_EQ(HelperIdentity::machServiceName, kApp + ".helper");
  EXPECT_EQ(HelperIdentity::plistName, kApp + ".helper.plist");
  EXPECT_EQ(HelperIdentity::kQueueLabel, kApp + ".helper.state");
  EXPECT_EQ(HelperIdentity::kLogCategory, "helper");
  EXPECT_EQ(HelperIdentity::kProtocolName, "BrindleHelperXPC");
}

TEST(HelperIdentity, IsVersionOne) { EXPECT_EQ(HelperIdentity::helperVersion, 1); }

TEST(HelperIdentity, DemandsTheApplicationsSignature) {
  EXPECT_EQ(HelperIdentity::appRequirement, "anchor apple generic and identifier \"" + kApp +
                                                "\" and certificate leaf[subject.OU] = \"" + kTeam + "\"");
}

TEST(HelperIdentity, DemandsTheHelpersSignature) {
  EXPECT_EQ(HelperIdentity::helperRequirement, "anchor apple generic and identifier \"" + kApp + ".helper" +
                                                   "\" and certificate leaf[subject.OU] = \"" + kTeam + "\"");
}

TEST(HelperIdentity, EndsRequirementsWithAQuoteRightBehindTheTeam) {
  for (const std::string_view requirement : {HelperIdentity::appRequirement, HelperIdentity::helperRequirement}) {
    EXPECT_TRUE(requirement.ends_with(kTeam + "\""));
  }
}

TEST(HelperIdentity, HasNoOtherSpacesInRequirements) {
  for (const std::string_view requirement : {HelperIdentity::appRequirement, HelperIdentity::helperRequirement}) {
    EXPECT_EQ(std::count(requirement.begin(), requirement.end(), ' '), 10);
    EXPECT_EQ(requirement.find("  "), std::string_view::npos);
  }
}

TEST(HelperIdentity, NamesTheServiceOnTheSystemBus) {
  EXPECT_EQ(HelperIdentity::kBusName, kApp + ".helper");
  EXPECT_EQ(HelperIdentity::kInterface, kApp + ".Helper1");
  EXPECT_EQ(HelperIdentity::kPolkitAction, kApp + ".helper.disable-sleep");
  EXPECT_EQ(HelperIdentity::kSetSleepDisabledMember, "SetSleepDisabled");
  EXPECT_EQ(HelperIdentity::kHeartbeatMember, "Heartbeat");
  EXPECT_EQ(HelperIdentity::kStatusMember, "Status");
}

TEST(HelperIdentity, PutsSlashesForDotsIntoTheObjectPath) {
  std::string path = "/" + kApp + "/helper";
  std::replace(path.begin(), path.end(), '.', '/');
  EXPECT_EQ(HelperIdentity::kObjectPath, path);
}

TEST(HelperIdentity, EndsEveryTextWithANul) {
  for (const std::string_view text :
       {HelperIdentity::teamID, HelperIdentity::helperLabel, HelperIdentity::machServiceName,
        HelperIdentity::appRequirement, HelperIdentity::helperRequirement, HelperIdentity::kObjectPath,
        HelperIdentity::kBusName, HelperIdentity::kInterface, HelperIdentity::kPolkitAction}) {
    EXPECT_EQ(std::string_view(text.data()), text);
  }
}

}  // namespace
}  // namespace brindle

#include "platform/code_signature_macos.h"

#include <CoreFoundation/CoreFoundation.h>
#include <Security/Security.h>

#include "logic/helper/helper_identity.h"

namespace brindle {
namespace {

// Lets go of a Core Foundation object, or of none, at the end of its scope.
template <typename Ref>
class Released {
 public:
  Released() = default;
  explicit Released(Ref reference) : reference_(reference) {}
  Released(const Released&) = delete;
  Released& operator=(const Released&) = delete;
  ~Released() {
    if (reference_ != nullptr) CFRelease(reference_);
  }
  [[nodiscard]] Ref get() const { return reference_; }
  [[nodiscard]] Ref* out() { return &reference_; }

 private:
  Ref reference_ = nullptr;
};

}  // namespace

bool ownSignatureFits() {
  const Released<CFStringRef> text(
      CFStringCreateWithCString(kCFAllocatorDefault, HelperIdentity::appRequirement.data(), kCFStringEncodingUTF8));
  Released<SecRequirementRef> requirement;
  Released<SecCodeRef> self;
  return text.get() != nullptr &&
         SecRequirementCreateWithString(text.get(), kSecCSDefaultFlags, requirement.out()) == errSecSuccess &&
         SecCodeCopySelf(kSecCSDefaultFlags, self.out()) == errSecSuccess &&
         SecCodeCheckValidity(self.get(), kSecCSDefaultFlags, requirement.get()) == errSecSuccess;
}

}  // namespace brindle

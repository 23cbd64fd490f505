#include "logic/plan/plan_provider.h"

namespace brindle {

std::string_view displayName(PlanProvider provider) {
  switch (provider) {
    case PlanProvider::claude:
      return "Claude (Pro and Max)";
    case PlanProvider::codex:
      return "Codex and ChatGPT";
    case PlanProvider::cursor:
      return "Cursor";
    case PlanProvider::gemini:
      return "Gemini CLI";
    case PlanProvider::copilot:
      return "GitHub Copilot";
  }
  return {};
}

std::optional<std::string_view> unavailableNote(PlanProvider provider) {
  switch (provider) {
    case PlanProvider::claude:
      return std::nullopt;
    case PlanProvider::codex:
      return "OpenAI's usage API covers API keys only. ChatGPT plan limits for Codex have no public API.";
    case PlanProvider::cursor:
      return "Cursor has no public API for plan usage.";
    case PlanProvider::gemini:
      return "Google has no public API for Gemini CLI plan quotas.";
    case PlanProvider::copilot:
      return "GitHub reports billed premium requests, not how much of your plan is left.";
  }
  return std::nullopt;
}

}  // namespace brindle

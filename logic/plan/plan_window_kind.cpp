#include "logic/plan/plan_window_kind.h"

namespace brindle {

Seconds length(PlanWindowKind kind) {
  switch (kind) {
    case PlanWindowKind::session:
      return Seconds{18000};
    case PlanWindowKind::week:
      return Seconds{604800};
  }
  return Seconds{0};
}

std::string_view label(PlanWindowKind kind) {
  switch (kind) {
    case PlanWindowKind::session:
      return "this 5 hour window";
    case PlanWindowKind::week:
      return "this week";
  }
  return {};
}

}  // namespace brindle

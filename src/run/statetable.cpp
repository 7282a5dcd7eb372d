#include "run/statetable.h"

#include <cstdio>
#include <cstring>
#include <string_view>

namespace statecut {
namespace {

constexpr State row(std::string_view name, std::string_view abbreviation) {
  State state{};
  for (std::size_t i = 0; i < sizeof state.name - 1; ++i) {
    state.name[i] = i < name.size() ? name[i] : ' ';
  }
  state.abbreviation[0] = abbreviation[0];
  state.abbreviation[1] = abbreviation[1];
  return state;
}

}  // namespace

std::array<State, kStateRows> states = {
    row("Armed Forces Africa", "AE"),
    row("Armed Forces Americas (except Canada)", "AA"),
    row("Armed Forces Canada", "AE"),
    row("Armed Forces Europe", "AE"),
    row("Armed Forces Middle East", "AE"),
    row("Armed Forces Pacific", "AP"),
    row("Alabama", "AL"),
    row("Alaska", "AK"),
    row("American Samoa", "AS"),
    row("Arizona", "AZ"),
    row("Arkansas", "AR"),
    row("California", "CA"),
    row("Colorado", "CO"),
    row("Connecticut", "CT"),
    row("Delaware", "DE"),
    row("District of Columbia", "DC"),
    row("Federated States of Micronesia", "FM"),
    row("Florida", "FL"),
    row("Georgia", "GA"),
    row("Guam", "GU"),
    row("Hawaii", "HI"),
    row("Idaho", "ID"),
    row("Illinois", "IL"),
    row("Indiana", "IN"),
    row("Iowa", "IA"),
    row("Kansas", "KS"),
    row("Kentucky", "KY"),
    row("Louisiana", "LA"),
    row("Maine", "ME"),
    row("Marshall Islands", "MH"),
    row("Maryland", "MD"),
    row("Massachusetts", "MA"),
    row("Michigan", "MI"),
    row("Minnesota", "MN"),
    row("Mississippi", "MS"),
    row("Missouri", "MO"),
    row("Montana", "MT"),
    row("Nebraska", "NE"),
    row("Nevada", "NV"),
    row("New Hampshire", "NH"),
    row("New Jersey", "NJ"),
    row("New Mexico", "NM"),
    row("New York", "NY"),
    row("North Carolina", "NC"),
    row("North Dakota", "ND"),
    row("Northern Mariana Islands", "MP"),
    row("Ohio", "OH"),
    row("Oklahoma", "OK"),
    row("Oregon", "OR"),
    row("Palau", "PW"),
    row("Pennsylvania", "PA"),
    row("Puerto Rico", "PR"),
    row("Rhode Island", "RI"),
    row("South Carolina", "SC"),
    row("South Dakota", "SD"),
    row("Tennessee", "TN"),
    row("Texas", "TX"),
    row("U.S. Minor Outlying Islands", "UM"),
    row("Utah", "UT"),
    row("Vermont", "VT"),
    row("Virgin Islands", "VI"),
    row("Virginia", "VA"),
    row("Washington", "WA"),
    row("West Virginia", "WV"),
    row("Wisconsin", "WI"),
    row("Wyoming", "WY"),
};

// Deliberate: alphabetical but for a few that follow the states' names, as users see the list.
// clang-format off
const std::array<char[3], kAbbreviations> abvstates = {{
    "AA", "AE", "AL", "AK", "AP", "AS", "AR", "AZ", "CA", "CO", "CT", "DC",
    "DE", "FM", "FL", "GA", "GU", "HI", "IA", "ID", "IL", "IN", "KS", "KY",
    "LA", "MA", "MD", "ME", "MI", "MH", "MN", "MO", "MP", "MS", "MT", "NC",
    "ND", "NE", "NH", "NJ", "NM", "NV", "NY", "OH", "OK", "OR", "PA", "PR",
    "PW", "RI", "SC", "SD", "TN", "TX", "UM", "UT", "VA", "VI", "VT", "WA",
    "WI", "WV", "WY",
}};
// clang-format on

std::int32_t verifyState(const char* text) {
  if (text == nullptr) return 1;
  // Deliberate: an abbreviation of several rows marks the first alone; the table always showed so.
  for (State& state : states) {
    if (std::strncmp(text, state.abbreviation, 2) == 0) {
      state.selected = 1;
      return 0;
    }
  }
  return 1;
}

void displayStates() {
  for (const State& state : states) {
    std::fprintf(stderr, "%s - %s\n", state.name, state.abbreviation);
  }
}

}  // namespace statecut

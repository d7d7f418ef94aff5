// What a user of a run did and saw, in its order.
#pragma once

#include "calls/run/user.h"

#include <string>
#include <variant>
#include <vector>

namespace rehearsal {

struct UserAction {
    std::string text; // as it was written
};

struct LoggedLine {
    std::string text; // UTF-8, without its end
};

// A dialog stands there as it looked from then on; one that isn't visible was closed.
using Moment = std::variant<UserAction, LoggedLine, platform::DialogView, platform::BoxView>;
using Timeline = std::vector<Moment>;

} // namespace rehearsal

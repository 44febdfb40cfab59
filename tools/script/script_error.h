// The error a job script can make: a message for its line.
#pragma once

#include <stdexcept>
#include <string>

namespace kryn::script {

// Thrown while a line is read or bound to a call; the player reports it as
// FILE:LINE: message and stops before making the line's call.
class ScriptError : public std::runtime_error {
  public:
    explicit ScriptError(const std::string& message) : std::runtime_error(message) {}
};

} // namespace kryn::script

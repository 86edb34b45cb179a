// The exception that carries a chess or file failure to the user, with its message text.
#pragma once

#include <stdexcept>
#include <string>

namespace moremate {

class ChessException : public std::runtime_error {
  public:
    explicit ChessException(const std::string& message) : std::runtime_error(message) {}
};

}  // namespace moremate

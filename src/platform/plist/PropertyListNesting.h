#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace ovix::platform {

/// How deep a property list nests arrays and dictionaries, measured on its bytes without recursion,
/// before libplist (whose parsers recurse once per level) is allowed to read it.
class PropertyListNesting {
  public:
    /// The nesting depth of the XML or binary property list in `bytes`, stopping early once it exceeds
    /// `limit`. nullopt for a binary list whose structure is broken or refers back into itself.
    static std::optional<std::size_t> measure(std::string_view bytes, std::size_t limit);

  private:
    static std::size_t measureXml(std::string_view text, std::size_t limit);
    static std::optional<std::size_t> measureBinary(std::string_view bytes, std::size_t limit);
};

}  // namespace ovix::platform

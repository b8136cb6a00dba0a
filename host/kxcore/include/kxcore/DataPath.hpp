#pragma once

#include "kxcore/Types.hpp"
#include "kxcore/kxcore_export.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kx::core
{
/**
 * The names that lead from the root of a DataStructure to one object. A value
 * type: ordering is lexicographic over the names, so paths sort parents first.
 */
class KXCORE_EXPORT DataPath
{
public:
  DataPath() = default;
  explicit DataPath(std::vector<std::string> names);

  /** Splits text at the delimiter; nothing if the text is empty or has an empty name. */
  static std::optional<DataPath> FromString(std::string_view text, char delimiter = '/');

  uint64 getLength() const { return m_Names.size(); }
  bool empty() const { return m_Names.empty(); }

  /** The last name, empty for an empty path. */
  std::string getTargetName() const;
  const std::vector<std::string>& getPathVector() const { return m_Names; }

  /** The path without its last name. */
  DataPath getParent() const;
  /** This path with one more name. */
  DataPath createChildPath(std::string name) const;

  std::string toString(std::string_view delimiter = "/") const;

  const std::string& operator[](usize index) const { return m_Names[index]; }

  bool operator==(const DataPath& other) const { return m_Names == other.m_Names; }
  bool operator!=(const DataPath& other) const { return !(*this == other); }
  bool operator<(const DataPath& other) const { return m_Names < other.m_Names; }

private:
  std::vector<std::string> m_Names;
};
} // namespace kx::core

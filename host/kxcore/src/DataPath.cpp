#include "kxcore/DataPath.hpp"

namespace kx::core
{
DataPath::DataPath(std::vector<std::string> names)
  : m_Names(std::move(names))
{
}

std::optional<DataPath> DataPath::FromString(std::string_view text, char delimiter)
{
  if (text.empty())
    return std::nullopt;
  std::vector<std::string> names;
  usize start = 0;
  while (true)
  {
    const usize end = text.find(delimiter, start);
    const std::string_view name =
      text.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start);
    if (name.empty())
      return std::nullopt;
    names.emplace_back(name);
    if (end == std::string_view::npos)
      break;
    start = end + 1;
  }
  return DataPath(std::move(names));
}

std::string DataPath::getTargetName() const
{
  return m_Names.empty() ? std::string() : m_Names.back();
}

DataPath DataPath::getParent() const
{
  if (m_Names.empty())
    return {};
  return DataPath(std::vector<std::string>(m_Names.begin(), m_Names.end() - 1));
}

DataPath DataPath::createChildPath(std::string name) const
{
  auto names = m_Names;
  names.push_back(std::move(name));
  return DataPath(std::move(names));
}

std::string DataPath::toString(std::string_view delimiter) const
{
  std::string text;
  for (usize i = 0; i < m_Names.size(); i++)
  {
    if (i > 0)
      text += delimiter;
    text += m_Names[i];
  }
  return text;
}
} // namespace kx::core

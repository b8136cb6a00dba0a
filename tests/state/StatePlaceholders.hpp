#pragma once
// Stored state files name their source files through placeholders ("@SAMPLE@",
// "@DATA_DIR@"), since real paths differ from machine to machine.

#include <string>

namespace statetest
{
/** Replaces every occurrence of a placeholder. */
inline std::string substitute(std::string text, const std::string& placeholder,
                              const std::string& value)
{
  for (std::size_t at = text.find(placeholder); at != std::string::npos;
       at = text.find(placeholder, at + value.size()))
    text.replace(at, placeholder.size(), value);
  return text;
}
} // namespace statetest

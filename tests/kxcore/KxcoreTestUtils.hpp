#pragma once

#include "kxcore/DataArray.hpp"
#include "kxcore/DataStore.hpp"

#include <optional>
#include <string>

namespace kxtest
{
/** Creates an in-memory array of the given shape, every element set to init. */
template<typename T>
kx::core::DataArray<T>* MakeArray(kx::core::DataStructure& ds, const std::string& name,
                                  kx::core::ShapeType tupleShape,
                                  kx::core::ShapeType componentShape,
                                  std::optional<kx::core::IdType> parentId, T init = T{})
{
  auto store = std::make_shared<kx::core::DataStore<T>>(std::move(tupleShape),
                                                        std::move(componentShape), init);
  return kx::core::DataArray<T>::Create(ds, name, store, parentId);
}

/** Paths joined as "a/b" text, for readable comparisons. */
inline std::vector<std::string> PathStrings(const std::vector<kx::core::DataPath>& paths)
{
  std::vector<std::string> out;
  for (const auto& path : paths)
    out.push_back(path.toString("/"));
  return out;
}
} // namespace kxtest

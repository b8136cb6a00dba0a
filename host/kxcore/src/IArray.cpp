#include "kxcore/IArray.hpp"

namespace kx::core
{
IArray::IArray(DataStructure& ds, std::string name, IdType id)
  : DataObject(ds, std::move(name), id)
{
}

IArray::~IArray() = default;
} // namespace kx::core

#pragma once

#include "kxcore/BaseGroup.hpp"

#include <optional>

namespace kx::core
{
/** A plain folder of objects. */
class KXCORE_EXPORT DataGroup : public BaseGroup
{
public:
  static constexpr const char* k_TypeName = "DataGroup";

  static DataGroup* Create(DataStructure& ds, std::string name,
                           std::optional<IdType> parentId = std::nullopt);
  static DataGroup* Import(DataStructure& ds, std::string name, IdType importId,
                           std::optional<IdType> parentId = std::nullopt);

  std::string getTypeName() const override { return k_TypeName; }

protected:
  DataGroup(DataStructure& ds, std::string name, IdType id);
  DataGroup(const DataGroup&) = default;
  std::shared_ptr<DataObject> shallowCopy() const override;
};
} // namespace kx::core

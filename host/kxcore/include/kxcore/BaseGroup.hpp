#pragma once

#include "kxcore/DataMap.hpp"
#include "kxcore/DataObject.hpp"

namespace kx::core
{
/** A DataObject with children. */
class KXCORE_EXPORT BaseGroup : public DataObject
{
public:
  ~BaseGroup() override;

  const DataMap& getDataMap() const { return m_DataMap; }
  DataMap::ConstIterator begin() const { return m_DataMap.begin(); }
  DataMap::ConstIterator end() const { return m_DataMap.end(); }
  usize getSize() const { return m_DataMap.size(); }

  /** Whether the object may become a child; groups restrict their content. */
  virtual bool canInsert(const DataObject& object) const;

protected:
  BaseGroup(DataStructure& dataStructure, std::string name, IdType id);
  BaseGroup(const BaseGroup&) = default;

private:
  friend class DataStructure;
  DataMap m_DataMap;
};
} // namespace kx::core

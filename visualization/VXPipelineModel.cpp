#include "visualization/VXPipelineModel.hpp"

#include "visualization/VXBridgeObject.hpp"
#include "visualization/VXCoreObject.hpp"

#include <algorithm>

namespace
{
template <typename Item>
int smallestFreeSuffix(const QList<Item*>& items, const QString& baseName)
{
  QList<int> taken;
  for(const Item* item : items)
  {
    if(item != nullptr && item->baseName() == baseName)
      taken.append(item->getNameSuffixCounter());
  }
  if(taken.isEmpty())
    return 0;
  std::sort(taken.begin(), taken.end());
  int candidate = 1;
  for(int suffix : taken)
  {
    if(suffix == candidate)
      candidate++;
    else if(suffix > candidate)
      break;
  }
  return candidate;
}
} // namespace

int VXPipelineModel::GetNameSuffixCounter(const QList<VXBridgeObject*>& items, const QString& baseName)
{
  return smallestFreeSuffix(items, baseName);
}

int VXPipelineModel::GetNameSuffixCounter(const QList<VXCoreObject*>& items, const QString& baseName)
{
  return smallestFreeSuffix(items, baseName);
}

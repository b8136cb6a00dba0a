#pragma once

#include <kxcore/DataArray.hpp>
#include <kxcore/DataStore.hpp>
#include <kxcore/DataStructure.hpp>

#include <vtkCallbackCommand.h>
#include <vtkCommand.h>
#include <vtkObject.h>
#include <vtkSmartPointer.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace bridgetest
{
using ElementTypes =
  ::testing::Types<std::int8_t, std::int16_t, std::int32_t, std::int64_t, std::uint8_t,
                   std::uint16_t, std::uint32_t, std::uint64_t, float, double>;

/** A host array of the given values under the structure's top level. */
template<typename T>
kx::core::DataArray<T>* makeArray(kx::core::DataStructure& ds, const std::string& name,
                                  const std::vector<T>& values, kx::core::ShapeType tupleShape,
                                  kx::core::ShapeType componentShape = { 1 },
                                  std::optional<kx::core::IdType> parent = std::nullopt)
{
  auto store = std::make_shared<kx::core::DataStore<T>>(tupleShape, componentShape);
  for (std::size_t i = 0; i < values.size(); i++)
    store->setValue(i, values[i]);
  return kx::core::DataArray<T>::Create(ds, name, store, parent);
}

/** Collects VTK error messages reported by one object instead of printing them. */
class ErrorCollector
{
public:
  explicit ErrorCollector(vtkObject* object)
    : m_Object(object)
  {
    m_Callback->SetClientData(this);
    m_Callback->SetCallback(
      [](vtkObject*, unsigned long, void* clientData, void* callData)
      {
        static_cast<ErrorCollector*>(clientData)
          ->m_Messages.emplace_back(static_cast<const char*>(callData));
      });
    m_Tag = object->AddObserver(vtkCommand::ErrorEvent, m_Callback);
  }
  ~ErrorCollector() { m_Object->RemoveObserver(m_Tag); }

  const std::vector<std::string>& messages() const { return m_Messages; }

private:
  vtkObject* m_Object;
  vtkSmartPointer<vtkCallbackCommand> m_Callback = vtkSmartPointer<vtkCallbackCommand>::New();
  unsigned long m_Tag = 0;
  std::vector<std::string> m_Messages;
};
} // namespace bridgetest

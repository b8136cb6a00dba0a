#include "bridge/Array.hpp"

#include "bridge/ComputeRangeFunctor.hpp"

#include <vtkDataArray.h>
#include <vtkInformation.h>
#include <vtkInformationVector.h>
#include <vtkNew.h>
#include <vtkObjectFactory.h>

#include <fmt/format.h>

#include <cmath>
#include <cstring>
#include <stdexcept>
#include <type_traits>
#include <typeinfo>

namespace CV
{
namespace
{
template<typename T>
const char* genericBaseName()
{
  return typeid(typename Array<T>::GenericBase).name();
}

[[noreturn]] void throwNoStore(const char* operation)
{
  throw std::runtime_error(
    fmt::format("CV::Array::{}() does not have an underlying kx::core::DataStore", operation));
}
} // namespace

vtkInformationIntegerVectorKey* TupleShapeKey()
{
  // the key's name is "IntegerVector" and its location "TupleShape"
  static vtkInformationIntegerVectorKey* key =
    vtkInformationIntegerVectorKey::MakeKey("IntegerVector", "TupleShape", -1);
  return key;
}

template<typename T>
Array<T>* Array<T>::New()
{
  auto* array = new Array<T>();
  array->InitializeObjectBase();
  return array;
}

template<typename T>
Array<T>::Array() = default;

template<typename T>
Array<T>::~Array() = default;

template<typename T>
vtkTypeBool Array<T>::IsTypeOf(const char* type)
{
  if (std::strcmp(k_ClassName, type) == 0 || std::strcmp(genericBaseName<T>(), type) == 0)
    return 1;
  return vtkDataArray::IsTypeOf(type);
}

template<typename T>
vtkTypeBool Array<T>::IsA(const char* type)
{
  return IsTypeOf(type);
}

template<typename T>
vtkIdType Array<T>::GetNumberOfGenerationsFromBaseType(const char* type)
{
  if (std::strcmp(k_ClassName, type) == 0)
    return 0;
  if (std::strcmp(genericBaseName<T>(), type) == 0)
    return 1;
  return 2 + vtkDataArray::GetNumberOfGenerationsFromBaseType(type);
}

template<typename T>
vtkIdType Array<T>::GetNumberOfGenerationsFromBase(const char* type)
{
  return GetNumberOfGenerationsFromBaseType(type);
}

template<typename T>
Array<T>* Array<T>::SafeDownCast(vtkObjectBase* object)
{
  // the class name is shared by all element types: the name test can't tell them apart
  return dynamic_cast<Array<T>*>(object);
}

template<typename T>
Array<T>* Array<T>::NewInstance() const
{
  return static_cast<Array<T>*>(NewInstanceInternal());
}

template<typename T>
vtkObjectBase* Array<T>::NewInstanceInternal() const
{
  // a filter that clones the type gets a writable array with a private store
  auto* instance = Array<T>::New();
  kx::core::ShapeType componentShape =
    m_DataStore ? m_DataStore->getComponentShape() : kx::core::ShapeType{ 1 };
  instance->m_DataStore =
    std::make_shared<kx::core::DataStore<T>>(kx::core::ShapeType{ 0 }, componentShape, T{});
  const int components = static_cast<int>(instance->m_DataStore->getNumberOfComponents());
  instance->vtkGenericDataArray<Array<T>, T>::SetNumberOfComponents(components > 0 ? components
                                                                                   : 1);
  return instance;
}

template<typename T>
void Array<T>::SetDataArray(const kx::core::DataArray<T>* dataArray)
{
  if (dataArray == nullptr || !dataArray->getStorageFormat().empty())
    return;

  m_DataStore =
    std::dynamic_pointer_cast<kx::core::DataStore<T>>(dataArray->getDataStoreRef().lock());
  if (!m_DataStore)
    return;
  this->SetName(dataArray->getName().c_str());

  const auto components = static_cast<vtkIdType>(m_DataStore->getNumberOfComponents());
  const auto tuples = static_cast<vtkIdType>(m_DataStore->getNumberOfTuples());
  const vtkIdType values = tuples * components;
  this->NumberOfComponents = static_cast<int>(components);
  this->Size = values;
  this->MaxId = values - 1;

  computeRanges();

  this->vtkGenericDataArray<Array<T>, T>::SetNumberOfComponents(static_cast<int>(components));
  // with Size already equal to the request, Allocate keeps the store and only
  // resets MaxId and marks the data changed
  if (this->Allocate(values, 0))
    this->MaxId = values - 1;
  this->SetObjectName(dataArray->getName());
}

template<typename T>
void Array<T>::computeRanges()
{
  ComputeRangeFunctor<T> functor(m_DataStore.get(), m_DataStore->data());
  functor.run();
  m_RangesComputed = true;

  const std::size_t components = functor.numberOfComponents();
  vtkNew<vtkInformationVector> perComponent;
  vtkNew<vtkInformationVector> perFiniteComponent;
  perComponent->SetNumberOfInformationObjects(static_cast<int>(components));
  perFiniteComponent->SetNumberOfInformationObjects(static_cast<int>(components));
  for (std::size_t c = 0; c < components; c++)
  {
    const double range[2] = { static_cast<double>(functor.minimum()[c]),
                              static_cast<double>(functor.maximum()[c]) };
    perComponent->GetInformationObject(static_cast<int>(c))
      ->Set(vtkDataArray::COMPONENT_RANGE(), range, 2);
    perFiniteComponent->GetInformationObject(static_cast<int>(c))
      ->Set(vtkDataArray::COMPONENT_RANGE(), range, 2);
  }
  vtkInformation* info = this->GetInformation();
  info->Set(vtkAbstractArray::PER_COMPONENT(), perComponent);
  info->Set(vtkAbstractArray::PER_FINITE_COMPONENT(), perFiniteComponent);
}

template<typename T>
T Array<T>::GetValue(vtkIdType valueIdx) const
{
  if (!m_DataStore)
    throwNoStore("GetValue");
  return m_DataStore->getValue(static_cast<std::size_t>(valueIdx));
}

template<typename T>
void Array<T>::SetValue(vtkIdType valueIdx, T value)
{
  if (!m_DataStore)
    throwNoStore("SetValue");
  m_DataStore->setValue(static_cast<std::size_t>(valueIdx), value);
}

template<typename T>
void Array<T>::GetTypedTuple(vtkIdType tupleIdx, T* tuple) const
{
  for (int c = 0; c < this->NumberOfComponents; c++)
    tuple[c] = GetTypedComponent(tupleIdx, c);
}

template<typename T>
void Array<T>::SetTypedTuple(vtkIdType tupleIdx, const T* tuple)
{
  for (int c = 0; c < this->NumberOfComponents; c++)
    SetTypedComponent(tupleIdx, c, tuple[c]);
}

template<typename T>
T Array<T>::GetTypedComponent(vtkIdType tupleIdx, int comp) const
{
  if (!m_DataStore)
    throwNoStore("GetTypedComponent");
  const auto components = static_cast<std::size_t>(m_DataStore->getNumberOfComponents());
  if (comp < 0 && components != 1)
  {
    // the sum of the raw components (not of their squares), in T with T's wrap-around
    // integers add in their unsigned twin, whose wrap-around is defined
    using Accumulator = typename std::conditional_t<std::is_integral_v<T>, std::make_unsigned<T>,
                                                    std::type_identity<T>>::type;
    Accumulator sum = 0;
    for (std::size_t c = 0; c < components; c++)
      sum += static_cast<Accumulator>(
        m_DataStore->getValue(static_cast<std::size_t>(tupleIdx) * components + c));
    return static_cast<T>(std::sqrt(static_cast<double>(static_cast<T>(sum))));
  }
  const std::size_t index =
    static_cast<std::size_t>(tupleIdx) * components + static_cast<std::size_t>(comp < 0 ? 0 : comp);
  if (index >= m_DataStore->getSize())
    throw std::runtime_error(fmt::format("CV::Array::GetTypedComponent() 'elementIndex + compIdx' "
                                         "of {} is greater than the number of elements {}",
                                         index, m_DataStore->getSize()));
  return m_DataStore->getValue(index);
}

template<typename T>
void Array<T>::SetTypedComponent(vtkIdType tupleIdx, int comp, T value)
{
  if (!m_DataStore)
    throwNoStore("SetTypedComponent");
  const auto components = static_cast<std::size_t>(m_DataStore->getNumberOfComponents());
  const std::size_t index =
    static_cast<std::size_t>(tupleIdx) * components + static_cast<std::size_t>(comp < 0 ? 0 : comp);
  if (index >= m_DataStore->getSize())
    throw std::runtime_error(fmt::format("CV::Array::SetTypedComponent() 'elementIndex + compIdx' "
                                         "of {} is greater than the number of elements {}",
                                         index, m_DataStore->getSize()));
  m_DataStore->setValue(index, value);
}

template<typename T>
bool Array<T>::AllocateTuples(vtkIdType numTuples)
{
  if (m_DataStore && m_DataStore->getNumberOfTuples() == static_cast<std::size_t>(numTuples))
  {
    // a fresh allocation promises zeros, even when the size stays
    m_DataStore->fill(0);
    return true;
  }
  kx::core::ShapeType componentShape =
    m_DataStore ? m_DataStore->getComponentShape() : kx::core::ShapeType{ 1 };
  // VTK sets the component count before allocating (NewInstance, then
  // SetNumberOfComponents, then Allocate): a count set that way wins
  if (this->NumberOfComponents > 0 && static_cast<std::size_t>(this->NumberOfComponents) !=
                                        kx::core::IDataStore::Product(componentShape))
    componentShape = { static_cast<std::size_t>(this->NumberOfComponents) };
  m_DataStore = std::make_shared<kx::core::DataStore<T>>(
    kx::core::ShapeType{ static_cast<std::size_t>(numTuples) }, componentShape, T{});
  this->NumberOfComponents = static_cast<int>(m_DataStore->getNumberOfComponents());
  this->Size = static_cast<vtkIdType>(m_DataStore->getSize());
  return true;
}

template<typename T>
bool Array<T>::ReallocateTuples(vtkIdType numTuples)
{
  if (!m_DataStore)
    throwNoStore("ReallocateTuples");
  auto newStore = std::make_shared<kx::core::DataStore<T>>(
    kx::core::ShapeType{ static_cast<std::size_t>(numTuples) }, m_DataStore->getComponentShape(),
    T{});
  const std::size_t count = std::min(m_DataStore->getSize(), newStore->getSize());
  for (std::size_t i = 0; i < count; i++)
    newStore->setValue(i, m_DataStore->getValue(i));
  m_DataStore = newStore;

  const int components = static_cast<int>(m_DataStore->getNumberOfComponents());
  const auto values = static_cast<vtkIdType>(m_DataStore->getSize());
  this->NumberOfComponents = components;
  this->Size = values;
  this->vtkGenericDataArray<Array<T>, T>::SetNumberOfComponents(components);
  if (this->Allocate(values, 0))
    this->MaxId = values - 1;
  return true;
}

template<typename T>
void* Array<T>::GetVoidPointer(vtkIdType valueIdx)
{
  if (!m_DataStore)
    return nullptr;
  return m_DataStore->data() + valueIdx;
}

template class Array<std::int8_t>;
template class Array<std::int16_t>;
template class Array<std::int32_t>;
template class Array<std::int64_t>;
template class Array<std::uint8_t>;
template class Array<std::uint16_t>;
template class Array<std::uint32_t>;
template class Array<std::uint64_t>;
template class Array<float>;
template class Array<double>;
} // namespace CV

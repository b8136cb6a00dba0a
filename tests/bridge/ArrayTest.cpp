#include "BridgeTestUtils.hpp"

#include <bridge/Array.hpp>
#include <bridge/VtkBridge.hpp>

#include <kxcore/DataGroup.hpp>
#include <kxcore/FileDataStore.hpp>

#include "TestSupport.hpp"

#include <vtkIdList.h>
#include <vtkInformation.h>

#include <cmath>
#include <limits>

using namespace kx::core;
using CV::VtkBridge::WrapDataArray;

namespace
{
template<typename T>
class WrappedArrayTest : public ::testing::Test
{
};
TYPED_TEST_SUITE(WrappedArrayTest, bridgetest::ElementTypes);

// One pass over every element type: the wrap is zero-copy, typed, named,
// shaped and ranged, and VTK sees the host's values in place.
TYPED_TEST(WrappedArrayTest, WrapSharesStoreAndReportsShapeAndRanges)
{
  using T = TypeParam;
  DataStructure ds;
  // 2 x 3 tuples of 2 components
  std::vector<T> values = {
    T(5), T(1), T(7), T(2), T(3), T(9), T(0), T(4), T(6), T(8), T(2), T(1)
  };
  auto* host = bridgetest::makeArray<T>(ds, "Values", values, { 2, 3 }, { 2 });

  vtkSmartPointer<vtkDataArray> wrapped = WrapDataArray(ds, host->getId());
  ASSERT_NE(wrapped, nullptr);
  auto* array = CV::Array<T>::SafeDownCast(wrapped);
  ASSERT_NE(array, nullptr);

  EXPECT_STREQ(array->GetClassName(), "CV::Array<T>");
  EXPECT_STREQ(array->GetName(), "Values");
  EXPECT_EQ(array->GetObjectName(), "Values");
  EXPECT_EQ(array->GetNumberOfComponents(), 2);
  EXPECT_EQ(array->GetNumberOfTuples(), 6);
  EXPECT_EQ(array->GetDataType(), vtkTypeTraits<T>::VTK_TYPE_ID);

  // zero copy: VTK's raw pointer is the host's buffer
  auto store = std::dynamic_pointer_cast<DataStore<T>>(host->getDataStoreRef().lock());
  EXPECT_EQ(array->GetVoidPointer(0), static_cast<void*>(store->data()));
  EXPECT_EQ(array->GetVoidPointer(3), static_cast<void*>(store->data() + 3));
  EXPECT_EQ(array->GetDataStore(), store);

  int shape[2] = { 0, 0 };
  ASSERT_EQ(array->GetInformation()->Length(CV::TupleShapeKey()), 2);
  array->GetInformation()->Get(CV::TupleShapeKey(), shape);
  EXPECT_EQ(shape[0], 2);
  EXPECT_EQ(shape[1], 3);

  double range[2];
  array->GetRange(range, 0);
  EXPECT_EQ(range[0], 0.0);
  EXPECT_EQ(range[1], 7.0);
  array->GetRange(range, 1);
  EXPECT_EQ(range[0], 1.0);
  EXPECT_EQ(range[1], 9.0);

  // writes go to the host's store
  array->SetTypedComponent(1, 1, T(42));
  EXPECT_EQ(store->getValue(3), T(42));
  store->setValue(0, T(11));
  EXPECT_EQ(array->GetTypedComponent(0, 0), T(11));
  EXPECT_EQ(array->GetValue(0), T(11));
}

TYPED_TEST(WrappedArrayTest, ResizingDetachesFromHostStore)
{
  using T = TypeParam;
  DataStructure ds;
  auto* host = bridgetest::makeArray<T>(ds, "A", { T(1), T(2), T(3), T(4) }, { 4 });
  vtkSmartPointer<vtkDataArray> wrapped = WrapDataArray(ds, host->getId());
  auto* array = CV::Array<T>::SafeDownCast(wrapped);
  ASSERT_NE(array, nullptr);
  auto hostStore = std::dynamic_pointer_cast<DataStore<T>>(host->getDataStoreRef().lock());

  ASSERT_TRUE(array->ReallocateTuples(6));
  EXPECT_EQ(array->GetNumberOfTuples(), 6);
  EXPECT_EQ(array->GetValue(3), T(4)); // kept
  EXPECT_EQ(array->GetValue(5), T(0)); // new
  array->SetValue(0, T(9));
  EXPECT_EQ(hostStore->getValue(0), T(1)); // host untouched
  EXPECT_NE(array->GetDataStore(), hostStore);
}

TYPED_TEST(WrappedArrayTest, NewInstanceIsWritableWithPrivateStore)
{
  using T = TypeParam;
  DataStructure ds;
  auto* host =
    bridgetest::makeArray<T>(ds, "V", { T(1), T(2), T(3), T(4), T(5), T(6) }, { 2 }, { 3 });
  vtkSmartPointer<vtkDataArray> wrapped = WrapDataArray(ds, host->getId());
  vtkSmartPointer<vtkDataArray> clone = vtkSmartPointer<vtkDataArray>::Take(wrapped->NewInstance());
  auto* typed = CV::Array<T>::SafeDownCast(clone);
  ASSERT_NE(typed, nullptr);
  EXPECT_EQ(typed->GetNumberOfComponents(), 3);
  EXPECT_EQ(typed->GetNumberOfTuples(), 0);
  ASSERT_NE(typed->GetDataStore(), nullptr);
  EXPECT_EQ(typed->GetDataStore()->getComponentShape(), ShapeType{ 3 });

  const T tuple[3] = { T(7), T(8), T(9) };
  typed->InsertNextTypedTuple(tuple);
  typed->InsertNextTypedTuple(tuple);
  EXPECT_EQ(typed->GetNumberOfTuples(), 2);
  EXPECT_EQ(typed->GetTypedComponent(1, 2), T(9));
  EXPECT_EQ(host->getDataStoreRefTyped().getValue(0), T(1));
}
} // namespace

TEST(WrappedArray, TypeInformationAcrossTheHierarchy)
{
  vtkNew<CV::Array<float>> array;
  EXPECT_TRUE(array->IsA("CV::Array<T>"));
  EXPECT_TRUE(array->IsA(typeid(CV::Array<float>::GenericBase).name()));
  EXPECT_TRUE(array->IsA("vtkDataArray"));
  EXPECT_TRUE(array->IsA("vtkAbstractArray"));
  EXPECT_FALSE(array->IsA("vtkFloatArray"));
  EXPECT_EQ(array->GetNumberOfGenerationsFromBase("CV::Array<T>"), 0);
  EXPECT_EQ(array->GetNumberOfGenerationsFromBase(typeid(CV::Array<float>::GenericBase).name()), 1);
  EXPECT_EQ(array->GetNumberOfGenerationsFromBase("vtkDataArray"), 2);
  EXPECT_EQ(array->GetNumberOfGenerationsFromBase("vtkObject"),
            2 + vtkDataArray::GetNumberOfGenerationsFromBaseType("vtkObject"));
  // the shared class name must not let one element type pass for another
  EXPECT_EQ(CV::Array<double>::SafeDownCast(array), nullptr);
  EXPECT_EQ(CV::Array<float>::SafeDownCast(array), array.GetPointer());
}

TEST(WrappedArray, ArraysThatCannotBePresentedWrapToNothing)
{
  DataStructure ds;
  auto* group = DataGroup::Create(ds, "Group");
  auto boolStore = std::make_shared<DataStore<bool>>(ShapeType{ 4 }, ShapeType{ 1 }, true);
  auto* boolArray = DataArray<bool>::Create(ds, "Mask", boolStore);
  kxtest::TempDir tmp;
  auto fileStore = std::make_shared<FileDataStore<float>>(tmp / "values.raw", ShapeType{ 8 },
                                                          ShapeType{ 1 }, true);
  auto* outOfCore = Float32Array::Create(ds, "OnDisk", fileStore);

  EXPECT_EQ(WrapDataArray(ds, group->getId()), nullptr);
  EXPECT_EQ(WrapDataArray(ds, boolArray->getId()), nullptr);
  EXPECT_EQ(WrapDataArray(ds, outOfCore->getId()), nullptr);
  EXPECT_EQ(WrapDataArray(ds, 9999), nullptr);
  EXPECT_EQ(WrapDataArray(nullptr), nullptr);

  // attaching an out-of-core array directly leaves the VTK array without a store
  vtkNew<CV::Array<float>> direct;
  direct->SetDataArray(outOfCore);
  EXPECT_EQ(direct->GetDataStore(), nullptr);
  EXPECT_EQ(direct->GetNumberOfTuples(), 0);
}

TEST(WrappedArray, ArrayOutlivesHostStructure)
{
  vtkSmartPointer<vtkDataArray> wrapped;
  {
    DataStructure ds;
    auto* host = bridgetest::makeArray<int32>(ds, "Ids", { 3, 1, 4, 1, 5 }, { 5 });
    wrapped = WrapDataArray(ds, host->getId());
    ds.removeData(host->getId());
  }
  ASSERT_NE(wrapped, nullptr);
  EXPECT_EQ(wrapped->GetNumberOfTuples(), 5);
  EXPECT_EQ(wrapped->GetComponent(4, 0), 5.0);
}

TEST(WrappedArray, MagnitudeComponentAndBoundsChecks)
{
  DataStructure ds;
  auto* vec = bridgetest::makeArray<float>(ds, "Vec", { 3.0f, 4.0f, 0.0f }, { 1 }, { 3 });
  auto* scalar = bridgetest::makeArray<int16>(ds, "S", { -7, 12 }, { 2 });
  vtkSmartPointer<vtkDataArray> vecWrapped = WrapDataArray(ds, vec->getId());
  vtkSmartPointer<vtkDataArray> scalarWrapped = WrapDataArray(ds, scalar->getId());
  auto* vecArray = CV::Array<float>::SafeDownCast(vecWrapped);
  auto* scalarArray = CV::Array<int16>::SafeDownCast(scalarWrapped);
  ASSERT_TRUE(vecArray && scalarArray);

  // component -1 of a multi-component tuple: square root of the plain sum
  EXPECT_FLOAT_EQ(vecArray->GetTypedComponent(0, -1), std::sqrt(7.0f));
  // of a single-component tuple: the value itself
  EXPECT_EQ(scalarArray->GetTypedComponent(1, -1), 12);
  EXPECT_EQ(scalarArray->GetTypedComponent(0, -1), -7);

  try
  {
    scalarArray->GetTypedComponent(2, 0);
    FAIL() << "expected an exception";
  }
  catch (const std::runtime_error& error)
  {
    EXPECT_STREQ(error.what(), "CV::Array::GetTypedComponent() 'elementIndex + compIdx' of 2 is "
                               "greater than the number of elements 2");
  }
  try
  {
    vecArray->SetTypedComponent(1, 1, 1.0f);
    FAIL() << "expected an exception";
  }
  catch (const std::runtime_error& error)
  {
    EXPECT_STREQ(error.what(), "CV::Array::SetTypedComponent() 'elementIndex + compIdx' of 4 is "
                               "greater than the number of elements 3");
  }
}

TEST(WrappedArray, WithoutStoreAccessThrowsNamedMessages)
{
  vtkNew<CV::Array<double>> array;
  const auto expectThrow = [](auto&& call, const std::string& operation)
  {
    try
    {
      call();
      ADD_FAILURE() << operation << " did not throw";
    }
    catch (const std::runtime_error& error)
    {
      EXPECT_EQ(std::string(error.what()),
                "CV::Array::" + operation + "() does not have an underlying kx::core::DataStore");
    }
  };
  expectThrow([&] { array->GetValue(0); }, "GetValue");
  expectThrow([&] { array->SetValue(0, 1.0); }, "SetValue");
  expectThrow([&] { array->GetTypedComponent(0, 0); }, "GetTypedComponent");
  expectThrow([&] { array->SetTypedComponent(0, 0, 1.0); }, "SetTypedComponent");
  expectThrow([&] { array->ReallocateTuples(3); }, "ReallocateTuples");
  EXPECT_EQ(array->GetVoidPointer(0), nullptr);
}

TEST(WrappedArray, RefusedOperationsReportAndChangeNothing)
{
  DataStructure ds;
  auto* host = bridgetest::makeArray<int32>(ds, "A", { 1, 2, 3 }, { 3 });
  vtkSmartPointer<vtkDataArray> wrapped = WrapDataArray(ds, host->getId());
  bridgetest::ErrorCollector errors(wrapped);
  int external[3] = { 7, 8, 9 };
  wrapped->SetVoidArray(external, 3, 1);
  wrapped->SetArrayFreeFunction(nullptr);
  EXPECT_EQ(wrapped->WriteVoidPointer(0, 3), nullptr);

  ASSERT_EQ(errors.messages().size(), 3u);
  EXPECT_NE(errors.messages()[0].find("CV::Array<T>"), std::string::npos);
  EXPECT_NE(errors.messages()[0].find(": SetVoidArray is not supported by this class."),
            std::string::npos);
  EXPECT_NE(errors.messages()[1].find(": SetArrayFreeFunction is not supported by this class."),
            std::string::npos);
  EXPECT_NE(errors.messages()[2].find(": WriteVoidPointer is not supported by this class."),
            std::string::npos);
  EXPECT_EQ(wrapped->GetComponent(0, 0), 1.0);
  EXPECT_EQ(host->getDataStoreRefTyped().getValue(2), 3);
}

TEST(WrappedArray, GetTuplesRefusesComponentMismatch)
{
  DataStructure ds;
  auto* source = bridgetest::makeArray<float>(ds, "Src", { 1, 2, 3, 4, 5, 6 }, { 3 }, { 2 });
  vtkSmartPointer<vtkDataArray> holder = WrapDataArray(ds, source->getId());
  auto* wrapped = CV::Array<float>::SafeDownCast(holder);
  vtkSmartPointer<CV::Array<float>> target =
    vtkSmartPointer<CV::Array<float>>::Take(wrapped->NewInstance());
  target->SetNumberOfComponents(3);
  target->SetNumberOfTuples(2);
  bridgetest::ErrorCollector errors(wrapped);
  wrapped->GetTuples(0, 1, target);
  ASSERT_EQ(errors.messages().size(), 1u);
  EXPECT_NE(
    errors.messages()[0].find("Number of components for input and output do not match.\nSource: 2"),
    std::string::npos);
  EXPECT_EQ(target->GetTypedComponent(0, 0), 0.0f);
}

TEST(WrappedArray, AllocateWithCurrentTupleCountZeroesSharedStore)
{
  DataStructure ds;
  auto* host = bridgetest::makeArray<uint16>(ds, "A", { 4, 5, 6 }, { 3 });
  vtkSmartPointer<vtkDataArray> holder = WrapDataArray(ds, host->getId());
  auto* wrapped = CV::Array<uint16>::SafeDownCast(holder);
  ASSERT_TRUE(wrapped->AllocateTuples(3));
  EXPECT_EQ(host->getDataStoreRefTyped().getValue(0), 0);
  EXPECT_EQ(host->getDataStoreRefTyped().getValue(2), 0);
  EXPECT_EQ(wrapped->GetDataStore(), host->getDataStore());

  // another count: a new private store; the host keeps its own
  host->getDataStoreRefTyped().setValue(1, 77);
  ASSERT_TRUE(wrapped->AllocateTuples(5));
  EXPECT_NE(wrapped->GetDataStore(), host->getDataStore());
  EXPECT_EQ(wrapped->GetDataStore()->getNumberOfTuples(), 5u);
  EXPECT_EQ(host->getDataStoreRefTyped().getValue(1), 77);
}

TEST(WrappedArray, RangeIsComputedOnceAtAttach)
{
  // a store that counts element reads through the virtual interface
  class CountingStore : public DataStore<double>
  {
  public:
    using DataStore<double>::DataStore;
    double getValue(usize index) const override
    {
      m_Reads++;
      return DataStore<double>::getValue(index);
    }
    mutable usize m_Reads = 0;
  };
  DataStructure ds;
  auto store = std::make_shared<CountingStore>(ShapeType{ 1000 }, ShapeType{ 1 }, 0.0);
  for (usize i = 0; i < 1000; i++)
    store->setValue(i, static_cast<double>(i) - 500.0);
  store->setValue(10, std::numeric_limits<double>::quiet_NaN());
  auto* host = Float64Array::Create(ds, "D", store);
  vtkSmartPointer<vtkDataArray> wrapped = WrapDataArray(ds, host->getId());
  store->m_Reads = 0;
  double range[2];
  wrapped->GetRange(range, 0);
  wrapped->GetFiniteRange(range, 0);
  EXPECT_EQ(store->m_Reads, 0u) << "VTK rescanned the array for its range";
  EXPECT_EQ(range[0], -500.0);
  EXPECT_EQ(range[1], 499.0);
}

// Array histograms: the parallel counting pass (the buffer path against the
// per-value virtual path, over every element type), its edge cases with exact
// counts, and the 200-bin table of PopulateHistogram.
#include <bridge/VtkBridge.hpp>
#include <utils/ExecuteVtkDataFunction.hpp>
#include <utils/GenerateHistogramFunctor.hpp>
#include <utils/PopulateHistogram.hpp>

#include <kxcore/DataArray.hpp>
#include <kxcore/DataStore.hpp>
#include <kxcore/DataStructure.hpp>

#include <gtest/gtest.h>

#include <vtkAOSDataArrayTemplate.h>
#include <vtkCellData.h>
#include <vtkCharArray.h>
#include <vtkDoubleArray.h>
#include <vtkFloatArray.h>
#include <vtkIdTypeArray.h>
#include <vtkIntArray.h>
#include <vtkPointData.h>
#include <vtkPolyData.h>
#include <vtkSOADataArrayTemplate.h>
#include <vtkTable.h>
#include <vtkUnsignedCharArray.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

using KXVtk::utils::ContiguousHistogramValues;
using KXVtk::utils::ExecuteVtkDataFunctionNoBool;
using KXVtk::utils::GenerateHistogramFunctor;

namespace
{
const char* const k_InvalidType = "ExecuteVtkDataFunctionNoBool<...>(FuncT&& func, DataType "
                                  "dataType, ArgsT&&... args). Error: Invalid DataType";

/** The outputs of one call of the functor. */
struct Histogram
{
  std::vector<double> counts, minimums, maximums;
  std::vector<std::string> minimumLabels, maximumLabels;
};

Histogram Count(vtkDataArray* array, int bins, int component = 0, bool custom = false,
                std::array<double, 2> range = { 0.0, 0.0 })
{
  Histogram h;
  ExecuteVtkDataFunctionNoBool(GenerateHistogramFunctor(), array->GetDataType(), array, custom,
                               range, h.minimums, h.maximums, h.minimumLabels, h.maximumLabels,
                               bins, h.counts, component);
  return h;
}

template<typename T>
Histogram CountAs(vtkDataArray* array, int bins, int component, bool custom,
                  std::array<double, 2> range)
{
  Histogram h;
  GenerateHistogramFunctor().operator()<T>(array, custom, range, h.minimums, h.maximums,
                                           h.minimumLabels, h.maximumLabels, bins, h.counts,
                                           component);
  return h;
}

double Total(const Histogram& h)
{
  return std::accumulate(h.counts.begin(), h.counts.end(), 0.0);
}

template<typename ArrayT>
vtkSmartPointer<ArrayT> MakeArray(const std::vector<typename ArrayT::ValueType>& values,
                                  int components = 1)
{
  auto array = vtkSmartPointer<ArrayT>::New();
  array->SetName("Values");
  array->SetNumberOfComponents(components);
  array->SetNumberOfValues(static_cast<vtkIdType>(values.size()));
  for (std::size_t i = 0; i < values.size(); i++)
    array->SetValue(static_cast<vtkIdType>(i), values[i]);
  return array;
}

/** Deterministic values, a third of them anywhere in T, with T's extremes and, for floating T,
 * NaN and infinities. */
template<typename V>
std::vector<V> MixedValues(std::size_t count)
{
  std::vector<V> values(count);
  for (std::size_t i = 0; i < count; i++)
  {
    const std::uint64_t mixed = (i * 2654435761u) ^ (i << 7);
    if constexpr (std::is_floating_point_v<V>)
      values[i] = static_cast<V>(static_cast<double>(mixed % 20011) * 0.37 - 2000.0);
    else if (i % 3 == 0)
      values[i] = static_cast<V>(mixed * 0x9E3779B97F4A7C15ull); // anywhere in T
    else if constexpr (std::is_signed_v<V>)
      values[i] = static_cast<V>(static_cast<int>(mixed % 251) - 125);
    else
      values[i] = static_cast<V>(mixed % 251);
  }
  values[1] = std::numeric_limits<V>::max();
  values[2] = std::numeric_limits<V>::lowest();
  if constexpr (std::is_floating_point_v<V>)
  {
    values[3] = std::numeric_limits<V>::quiet_NaN();
    values[4] = std::numeric_limits<V>::infinity();
    values[5] = -std::numeric_limits<V>::infinity();
    values[1] = V(5000); // the finite top, exactly at the top edge
    values[2] = V(-2500);
  }
  return values;
}

template<typename T>
class HistogramPathTest : public ::testing::Test
{
};
// VTK's 64-bit arrays hold long long, which the dispatcher counts as int64_t / uint64_t
using StorageTypes =
  ::testing::Types<std::int8_t, std::int16_t, std::int32_t, long long, std::uint8_t, std::uint16_t,
                   std::uint32_t, unsigned long long, float, double>;
TYPED_TEST_SUITE(HistogramPathTest, StorageTypes);

// The buffer path (VTK's own arrays and the adaptor over a host store) counts exactly as the
// virtual path over the same values, whatever the type, component, range and bin count.
TYPED_TEST(HistogramPathTest, BufferPathCountsAsTheVirtualPath)
{
  using V = TypeParam;
  using T =
    std::conditional_t<std::is_same_v<V, long long>, std::int64_t,
                       std::conditional_t<std::is_same_v<V, unsigned long long>, std::uint64_t, V>>;
  const std::vector<V> values = MixedValues<V>(30001);
  auto contiguous = MakeArray<vtkAOSDataArrayTemplate<V>>(values, 3);
  auto split = MakeArray<vtkSOADataArrayTemplate<V>>(values, 3);
  ASSERT_NE(ContiguousHistogramValues<T>(contiguous), nullptr);
  ASSERT_EQ(ContiguousHistogramValues<T>(split), nullptr);

  // the zero-copy adaptor over a host store reads its buffer too
  kx::core::DataStructure ds;
  auto store = std::make_shared<kx::core::DataStore<T>>(kx::core::ShapeType{ 10000 },
                                                        kx::core::ShapeType{ 3 });
  for (std::size_t i = 0; i < 30000; i++)
    store->setValue(i, static_cast<T>(values[i]));
  auto* host = kx::core::DataArray<T>::Create(ds, "Values", store);
  vtkSmartPointer<vtkDataArray> adaptor = CV::VtkBridge::WrapDataArray(ds, host->getId());
  ASSERT_NE(adaptor, nullptr);
  ASSERT_EQ(ContiguousHistogramValues<T>(adaptor), store->data());

  struct Case
  {
    int bins;
    int component;
    bool custom;
    std::array<double, 2> range;
  };
  // the adaptor's values, read through the virtual path (a deep copy would go through double)
  auto adaptorValues = MakeArray<vtkSOADataArrayTemplate<V>>(
    std::vector<V>(values.begin(), values.begin() + 30000), 3);

  // Both paths get the same bounds: the virtual array's own finite range (VTK's array classes
  // may round a magnitude range differently) or a custom range narrower than the data.
  const double mid = std::is_floating_point_v<V> ? 100.0 : (std::is_signed_v<V> ? -20.0 : 20.0);
  for (const Case& c : { Case{ 200, 0, false, {} }, Case{ 200, 1, false, {} },
                         Case{ 50, 2, false, {} }, Case{ 1, 0, false, {} },
                         Case{ 7, -1, false, {} }, Case{ 13, 1, true, { mid, mid + 90.0 } } })
  {
    SCOPED_TRACE(::testing::Message() << c.bins << " bins, component " << c.component);
    std::array<double, 2> range = c.range;
    if (!c.custom)
      split->GetFiniteRange(range.data(), c.component);
    const Histogram fast = Count(contiguous, c.bins, c.component, true, range);
    const Histogram slow = Count(split, c.bins, c.component, true, range);
    ASSERT_EQ(fast.counts.size(), static_cast<std::size_t>(c.bins));
    EXPECT_EQ(fast.counts, slow.counts);
    EXPECT_EQ(fast.minimums, slow.minimums);
    EXPECT_EQ(fast.maximumLabels, slow.maximumLabels);
    // something was counted, and never more than there are tuples
    EXPECT_GT(Total(fast), 0.0);
    EXPECT_LE(Total(fast), 10000.0);
    if (c.component >= 0 && !c.custom) // the array's own range gives the same bins
    {
      EXPECT_EQ(Count(contiguous, c.bins, c.component).counts, fast.counts);
    }

    if (!c.custom)
      adaptorValues->GetFiniteRange(range.data(), c.component);
    EXPECT_EQ(CountAs<T>(adaptor, c.bins, c.component, true, range).counts,
              CountAs<T>(adaptorValues, c.bins, c.component, true, range).counts);
  }
}

TEST(HistogramFunctor, EdgeCasesGiveExactCounts)
{
  // eight-bit values 0..255 in 200 bins: width 1.275, and 255 is rejected
  std::vector<std::uint8_t> bytes(256);
  std::iota(bytes.begin(), bytes.end(), std::uint8_t{ 0 });
  Histogram h = Count(MakeArray<vtkUnsignedCharArray>(bytes), 200);
  EXPECT_EQ(Total(h), 255.0);
  EXPECT_EQ(h.counts[0], 2.0);   // 0 and 1
  EXPECT_EQ(h.counts[1], 1.0);   // 2
  EXPECT_EQ(h.counts[199], 1.0); // 254
  EXPECT_EQ(h.minimums[1], 1.0); // T(1.275) + 0
  EXPECT_EQ(h.maximums[199], 255.0);
  EXPECT_EQ(h.minimumLabels[1], "1");

  // NaN and infinities change no count and no range; the top value is rejected
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  const std::vector<double> expected = { 1, 1, 1, 0 };
  EXPECT_EQ(Count(MakeArray<vtkDoubleArray>({ 0, 1, 2, 3 }), 4).counts, expected);
  h = Count(MakeArray<vtkDoubleArray>({ -inf, 0, nan, 1, 2, 3, inf }), 4);
  EXPECT_EQ(h.counts, expected);
  EXPECT_EQ(h.minimums, (std::vector<double>{ 0, 0.75, 1.5, 2.25 }));
  EXPECT_EQ(h.maximumLabels, (std::vector<std::string>{ "0.75", "1.5", "2.25", "3" }));

  // one bin has exactly the range's edges
  h = Count(MakeArray<vtkDoubleArray>({ 0.1, 0.7, 2.5 }), 1);
  EXPECT_EQ(h.minimums, std::vector<double>{ 0.1 });
  EXPECT_EQ(h.maximums, std::vector<double>{ 2.5 });
  EXPECT_EQ(h.counts, std::vector<double>{ 2 });

  // a constant array: width 0, everything in bin 0
  h = Count(MakeArray<vtkIntArray>({ 5, 5, 5 }), 10);
  EXPECT_EQ(h.counts, (std::vector<double>{ 3, 0, 0, 0, 0, 0, 0, 0, 0, 0 }));

  // an empty array counts nothing
  h = Count(MakeArray<vtkFloatArray>({}), 8);
  EXPECT_EQ(h.counts, std::vector<double>(8, 0.0));
  EXPECT_EQ(h.minimumLabels.size(), 8u);

  // a custom range narrower than the data rejects everything outside it, also just below it
  h = Count(MakeArray<vtkFloatArray>({ 0, 1.5f, 2, 3, 4, 5, 6, 7 }), 4, 0, true, { 2.0, 6.0 });
  EXPECT_EQ(h.counts, (std::vector<double>{ 1, 1, 1, 1 }));

  // a component of a multi-component array, and the magnitude
  auto vectors = MakeArray<vtkAOSDataArrayTemplate<short>>({ 0, 10, 3, 0, 20, 4, 0, 30, 0 }, 3);
  EXPECT_EQ(Count(vectors, 2, 1).counts, (std::vector<double>{ 1, 1 }));
  EXPECT_EQ(Count(vectors, 3, -1).counts, (std::vector<double>{ 1, 1, 0 })); // |.| 10.4, 20.4, 30
  EXPECT_THROW(Count(vectors, 2, 3), std::out_of_range);

  // types outside the ten raise the dispatcher's error
  for (vtkSmartPointer<vtkDataArray> array :
       { vtkSmartPointer<vtkDataArray>(MakeArray<vtkIdTypeArray>({ 1, 2 })),
         vtkSmartPointer<vtkDataArray>(MakeArray<vtkCharArray>({ 1, 2 })) })
  {
    try
    {
      Count(array, 4);
      ADD_FAILURE() << "no exception for " << array->GetDataTypeAsString();
    }
    catch (const std::runtime_error& error)
    {
      EXPECT_STREQ(error.what(), k_InvalidType);
    }
  }
}

vtkSmartPointer<vtkPolyData> DataSetWith(vtkDataArray* pointArray,
                                         vtkDataArray* cellArray = nullptr)
{
  auto data = vtkSmartPointer<vtkPolyData>::New();
  if (pointArray != nullptr)
    data->GetPointData()->AddArray(pointArray);
  if (cellArray != nullptr)
    data->GetCellData()->AddArray(cellArray);
  return data;
}

TEST(PopulateHistogram, FillsTwoHundredBinsOfCentresAndCounts)
{
  // 0..398 in steps of 2: the centres span the range in 199 intervals, the counts 200 bins
  std::vector<float> values(200);
  for (std::size_t i = 0; i < values.size(); i++)
    values[i] = 2.0f * static_cast<float>(i);
  values.push_back(std::numeric_limits<float>::quiet_NaN());
  auto data = DataSetWith(MakeArray<vtkFloatArray>(values));
  vtkNew<vtkTable> table;
  fliozi::PopulateHistogram(data, "Values", "image_pops", table);
  ASSERT_EQ(table->GetNumberOfColumns(), 2);
  auto* centres = vtkFloatArray::SafeDownCast(table->GetColumnByName("Values"));
  auto* counts = vtkIntArray::SafeDownCast(table->GetColumnByName("image_pops"));
  ASSERT_NE(centres, nullptr);
  ASSERT_NE(counts, nullptr);
  ASSERT_EQ(table->GetNumberOfRows(), 200);
  EXPECT_FLOAT_EQ(centres->GetValue(0), 1.0f);
  EXPECT_FLOAT_EQ(centres->GetValue(199), 399.0f);
  // width 1.99: 0 -> 0, 2 -> 1, ..., 396 -> 198 (199.0 rounds down), 398 is the top
  EXPECT_EQ(counts->GetValue(0), 1);
  EXPECT_EQ(counts->GetValue(100), 1);
  int total = 0;
  for (vtkIdType i = 0; i < 200; i++)
    total += counts->GetValue(i);
  EXPECT_EQ(total, 199);

  // the same columns are reused and keep their places
  fliozi::PopulateHistogram(data, "Values", "image_pops", table);
  EXPECT_EQ(table->GetColumnByName("Values"), centres);
  EXPECT_EQ(table->GetColumn(1), counts);

  // a constant cell array: the centres widen to low + 1, the counts all land in bin 0
  auto constant = MakeArray<vtkIntArray>({ 7, 7, 7, 7 });
  constant->SetName("Phase");
  vtkNew<vtkTable> other;
  KXVtkModule::utils::ComputeArrayHistogram(DataSetWith(nullptr, constant), "Phase", "image_pops",
                                            other);
  auto* phaseCentres = vtkFloatArray::SafeDownCast(other->GetColumnByName("Phase"));
  auto* phaseCounts = vtkIntArray::SafeDownCast(other->GetColumnByName("image_pops"));
  ASSERT_NE(phaseCentres, nullptr);
  ASSERT_NE(phaseCounts, nullptr);
  EXPECT_FLOAT_EQ(phaseCentres->GetValue(0), 7.0f + 0.5f / 199.0f);
  EXPECT_FLOAT_EQ(phaseCentres->GetValue(199), 8.0f + 0.5f / 199.0f);
  EXPECT_EQ(phaseCounts->GetValue(0), 4);
  EXPECT_EQ(phaseCounts->GetValue(1), 0);
}

TEST(PopulateHistogram, LeavesTheTableAsItWasOnFailure)
{
  vtkNew<vtkTable> table;
  vtkNew<vtkIntArray> kept;
  kept->SetName("image_pops");
  kept->InsertNextValue(42);
  table->AddColumn(kept);

  // no such array: nothing happens
  fliozi::PopulateHistogram(DataSetWith(MakeArray<vtkFloatArray>({ 1, 2 })), "Missing",
                            "image_pops", table);
  ASSERT_EQ(table->GetNumberOfColumns(), 1);

  // an id array is no element type to count: the error passes, the table stays
  try
  {
    fliozi::PopulateHistogram(DataSetWith(MakeArray<vtkIdTypeArray>({ 1, 2, 3 })), "Values",
                              "image_pops", table);
    ADD_FAILURE() << "no exception for an id array";
  }
  catch (const std::runtime_error& error)
  {
    EXPECT_STREQ(error.what(), k_InvalidType);
  }
  ASSERT_EQ(table->GetNumberOfColumns(), 1);
  EXPECT_EQ(table->GetColumn(0), kept.Get());
  EXPECT_EQ(kept->GetNumberOfTuples(), 1);
  EXPECT_EQ(kept->GetValue(0), 42);
}
} // namespace

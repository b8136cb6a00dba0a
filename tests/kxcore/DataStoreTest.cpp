#include "KxcoreTestUtils.hpp"
#include "TestSupport.hpp"

#include "kxcore/DataStore.hpp"
#include "kxcore/FileDataStore.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>

using namespace kx::core;

namespace
{
/** A distinct, representable value for each index. */
template<typename T>
T ValueAt(usize index)
{
  if constexpr (std::is_same_v<T, bool>)
    return index % 3 == 1;
  else
    return static_cast<T>(index * 3 + 1);
}

std::string ThrownMessage(const std::function<void()>& call)
{
  try
  {
    call();
  }
  catch (const std::runtime_error& error)
  {
    return error.what();
  }
  return "<nothing thrown>";
}

template<typename T>
class StoreTest : public ::testing::Test
{
};

using ElementTypes = ::testing::Types<int8, uint8, int16, uint16, int32, uint32, int64, uint64,
                                      float32, float64, bool>;
TYPED_TEST_SUITE(StoreTest, ElementTypes);
} // namespace

TYPED_TEST(StoreTest, ShapesCountsAndInitialValue)
{
  using T = TypeParam;
  const T init = ValueAt<T>(1);
  DataStore<T> store({ 2, 3 }, { 4, 1 }, init);
  EXPECT_EQ(store.getTupleShape(), (ShapeType{ 2, 3 }));
  EXPECT_EQ(store.getComponentShape(), (ShapeType{ 4, 1 }));
  EXPECT_EQ(store.getNumberOfTuples(), 6u);
  EXPECT_EQ(store.getNumberOfComponents(), 4u);
  EXPECT_EQ(store.getSize(), 24u);
  EXPECT_EQ(store.size(), 24u);
  EXPECT_EQ(store.getDataType(), GetDataType<T>());
  EXPECT_EQ(store.getStorageFormat(), "");
  for (usize i = 0; i < store.getSize(); i++)
    ASSERT_EQ(store.getValue(i), init) << i;

  const DataStore<T> empty({ 0 }, { 3 });
  EXPECT_EQ(empty.getSize(), 0u);
  EXPECT_EQ(empty.data(), nullptr);
}

TYPED_TEST(StoreTest, ValuesLiveInOneRowMajorBufferWithCheckedAccess)
{
  using T = TypeParam;
  DataStore<T> store({ 3 }, { 2 });
  store.fill(ValueAt<T>(0));
  for (usize i = 0; i < 6; i++)
    ASSERT_EQ(store.getValue(i), ValueAt<T>(0));
  // tuple 2, component 1 is element 5
  store.setValue(2 * 2 + 1, ValueAt<T>(4));
  const T* buffer = store.data();
  ASSERT_NE(buffer, nullptr);
  EXPECT_EQ(buffer[5], ValueAt<T>(4));
  EXPECT_EQ(buffer[4], ValueAt<T>(0));
  EXPECT_EQ(store.begin(), buffer);
  EXPECT_EQ(store.end(), buffer + 6);

  AbstractDataStore<T>& typed = store;
  EXPECT_EQ(typed.getValue(5), ValueAt<T>(4));
  EXPECT_EQ(typed.at(5), ValueAt<T>(4));
  EXPECT_EQ(ThrownMessage([&] { (void)store.at(6); }), "DataStore::at(6) is out of bounds. Size=6");
  EXPECT_EQ(ThrownMessage([&] { (void)store.at(1234); }),
            "DataStore::at(1234) is out of bounds. Size=6");
}

TYPED_TEST(StoreTest, BitwiseAndRemainderOnlyForIntegers)
{
  using T = TypeParam;
  DataStore<T> store({ 6 }, { 1 });
  if constexpr (std::is_same_v<T, bool> || std::is_floating_point_v<T>)
  {
    store.fill(ValueAt<T>(1));
    const std::string suffix = "() invalid operator for bool or floating point";
    EXPECT_EQ(ThrownMessage([&] { store.bitwiseAND(0, T{}); }), "DataStore::bitwiseAND" + suffix);
    EXPECT_EQ(ThrownMessage([&] { store.bitwiseOR(0, T{}); }), "DataStore::bitwiseOR" + suffix);
    EXPECT_EQ(ThrownMessage([&] { store.bitwiseXOR(0, T{}); }), "DataStore::bitwiseXOR" + suffix);
    EXPECT_EQ(ThrownMessage([&] { store.bitwiseLShift(0, T{}); }),
              "DataStore::bitwiseLShift" + suffix);
    EXPECT_EQ(ThrownMessage([&] { store.bitwiseRShift(0, T{}); }),
              "DataStore::bitwiseRShift" + suffix);
    EXPECT_EQ(ThrownMessage([&] { store.rem(0, T{}); }), "DataStore::rem" + suffix);
    EXPECT_EQ(store.getValue(0), ValueAt<T>(1));
  }
  else
  {
    store.fill(T(0b1100));
    store.bitwiseAND(0, T(0b1010));
    store.bitwiseOR(1, T(0b0011));
    store.bitwiseXOR(2, T(0b1010));
    store.bitwiseLShift(3, T(2));
    store.bitwiseRShift(4, T(2));
    store.rem(5, T(5));
    EXPECT_EQ(store.getValue(0), T(0b1000));
    EXPECT_EQ(store.getValue(1), T(0b1111));
    EXPECT_EQ(store.getValue(2), T(0b0110));
    EXPECT_EQ(store.getValue(3), T(48));
    EXPECT_EQ(store.getValue(4), T(3));
    EXPECT_EQ(store.getValue(5), T(2));
  }
}

TYPED_TEST(StoreTest, WritesRawBinaryFile)
{
  using T = TypeParam;
  kxtest::TempDir dir;
  DataStore<T> store({ 4 }, { 2 });
  for (usize i = 0; i < store.getSize(); i++)
    store.setValue(i, ValueAt<T>(i));
  const auto path = dir / "values.raw";
  store.writeBinaryFile(path);

  const std::string bytes = kxtest::ReadBytes(path);
  ASSERT_EQ(bytes.size(), 8 * sizeof(T));
  EXPECT_EQ(std::memcmp(bytes.data(), store.data(), bytes.size()), 0);

  const auto missing = dir / "no such folder" / "values.raw";
  EXPECT_EQ(ThrownMessage([&] { store.writeBinaryFile(missing); }),
            "File could not be opened for writing:\n  '" + missing.string() + "'");
  // opening works but nothing fits on the device
  EXPECT_EQ(ThrownMessage([&] { store.writeBinaryFile("/dev/full"); }),
            "Error writing binary file:\n  Total Elements:'8'\n");
}

TYPED_TEST(StoreTest, FileStoreKeepsValuesOnDisk)
{
  using T = TypeParam;
  kxtest::TempDir dir;
  const auto path = dir / "store.raw";
  auto store = std::make_shared<FileDataStore<T>>(path, ShapeType{ 3, 2 }, ShapeType{ 2 }, true);
  EXPECT_FALSE(store->getStorageFormat().empty());
  EXPECT_EQ(store->getSize(), 12u);
  EXPECT_EQ(std::filesystem::file_size(path), 12 * sizeof(T));
  EXPECT_EQ(store->getValue(11), T{});
  for (usize i = 0; i < store->getSize(); i++)
    store->setValue(i, ValueAt<T>(i));

  const FileDataStore<T> reopened(path, { 3, 2 }, { 2 }, false);
  for (usize i = 0; i < reopened.getSize(); i++)
    ASSERT_EQ(reopened.getValue(i), ValueAt<T>(i)) << i;
  EXPECT_EQ(ThrownMessage([&] { (void)reopened.at(12); }),
            "DataStore::at(12) is out of bounds. Size=12");

  DataStructure ds;
  auto* array = DataArray<T>::Create(ds, "OutOfCore", store);
  ASSERT_NE(array, nullptr);
  EXPECT_EQ(array->getStorageFormat(), store->getStorageFormat());
  EXPECT_EQ(array->getTupleShape(), (ShapeType{ 3, 2 }));
  EXPECT_EQ(array->getNumberOfTuples(), 6u);
  EXPECT_EQ(array->getSize(), 12u);
  const std::shared_ptr<IDataStore> locked = array->getDataStoreRef().lock();
  EXPECT_EQ(locked.get(), store.get());
  EXPECT_EQ(std::dynamic_pointer_cast<DataStore<T>>(locked), nullptr);
  EXPECT_EQ((*array)[7], ValueAt<T>(7));
}

TYPED_TEST(StoreTest, InMemoryArrayLocksToItsDataStore)
{
  using T = TypeParam;
  DataStructure ds;
  auto* array = kxtest::MakeArray<T>(ds, "Values", { 4, 5 }, { 3 }, std::nullopt, ValueAt<T>(1));
  ASSERT_NE(array, nullptr);
  EXPECT_EQ(array->getDataType(), GetDataType<T>());
  EXPECT_EQ(array->getNumberOfTuples(), 20u);
  EXPECT_EQ(array->getNumberOfComponents(), 3u);

  const std::shared_ptr<IDataStore> locked = array->getDataStoreRef().lock();
  ASSERT_EQ(locked, array->getDataStore());
  auto memory = std::dynamic_pointer_cast<DataStore<T>>(locked);
  ASSERT_NE(memory, nullptr);
  memory->data()[59] = ValueAt<T>(2);
  EXPECT_EQ(array->at(59), ValueAt<T>(2));
  EXPECT_EQ(array->getDataStoreRef().lock()->getSize(), 60u);
}

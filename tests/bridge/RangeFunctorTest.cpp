#include "BridgeTestUtils.hpp"

#include <bridge/Array.hpp>
#include <bridge/ComputeRangeFunctor.hpp>
#include <bridge/VtkBridge.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

using namespace kx::core;

namespace
{
template<typename T>
bool sameValue(T a, T b)
{
  if constexpr (std::is_floating_point_v<T>)
  {
    if (std::isnan(a) && std::isnan(b))
      return true;
  }
  return a == b;
}

/** The buffer pass and the element-by-element pass must agree exactly. */
template<typename T>
void expectPathsAgree(const DataStore<T>& store, const std::string& label)
{
  CV::ComputeRangeFunctor<T> reference(&store);
  reference.run();
  CV::ComputeRangeFunctor<T> fast(&store, store.data());
  fast.run();
  ASSERT_EQ(reference.numberOfComponents(), fast.numberOfComponents()) << label;
  for (std::size_t c = 0; c < reference.numberOfComponents(); c++)
  {
    EXPECT_TRUE(sameValue(reference.minimum()[c], fast.minimum()[c]))
      << label << " min of component " << c;
    EXPECT_TRUE(sameValue(reference.maximum()[c], fast.maximum()[c]))
      << label << " max of component " << c;
  }
  EXPECT_TRUE(sameValue(reference.minimumMagnitude(), fast.minimumMagnitude()))
    << label << " min magnitude";
  EXPECT_TRUE(sameValue(reference.maximumMagnitude(), fast.maximumMagnitude()))
    << label << " max magnitude";
}

template<typename T>
std::vector<T> specialValues()
{
  using L = std::numeric_limits<T>;
  std::vector<T> values;
  values.reserve(16);
  values.insert(values.end(),
                { L::lowest(), L::max(), T(0), T(1), T(L::max() / 2), T(L::lowest() / 2) });
  if constexpr (std::is_floating_point_v<T>)
  {
    values.insert(values.end(), { L::quiet_NaN(), L::infinity(), -L::infinity(), L::denorm_min(),
                                  L::min(), T(-2.5) });
  }
  else if constexpr (std::is_signed_v<T>)
  {
    values.push_back(T(-1));
  }
  return values;
}

template<typename T>
class RangeFunctorTest : public ::testing::Test
{
};
TYPED_TEST_SUITE(RangeFunctorTest, bridgetest::ElementTypes);

TYPED_TEST(RangeFunctorTest, BufferPassMatchesElementPass)
{
  using T = TypeParam;
  std::mt19937_64 random(7);
  const auto special = specialValues<T>();
  for (std::size_t components : { 1u, 2u, 3u })
  {
    // large enough for the reduction to split across workers
    for (std::size_t tuples : { 0u, 1u, 17u, 100000u })
    {
      DataStore<T> store({ tuples }, { components }, T(0));
      for (std::size_t i = 0; i < store.getSize(); i++)
      {
        // mostly ordinary values, sprinkled with the extremes
        if (random() % 97 == 0)
          store.setValue(i, special[random() % special.size()]);
        else
          store.setValue(
            i, static_cast<T>(static_cast<int>(random() % 200) - (std::is_signed_v<T> ? 100 : 0)));
      }
      expectPathsAgree(store, std::to_string(components) + "x" + std::to_string(tuples));
    }
  }
  // every special value alone, and all of them together
  for (T value : special)
  {
    DataStore<T> single({ 3 }, { 1 }, value);
    expectPathsAgree(single, "constant");
  }
  DataStore<T> all({ special.size() }, { 1 });
  std::copy(special.begin(), special.end(), all.data());
  expectPathsAgree(all, "specials");
}

TYPED_TEST(RangeFunctorTest, EmptyStoreKeepsInitialValues)
{
  using T = TypeParam;
  DataStore<T> store({ 0 }, { 2 });
  CV::ComputeRangeFunctor<T> functor(&store, store.data());
  functor.run();
  EXPECT_EQ(functor.minimum(), std::vector<T>(2, std::numeric_limits<T>::max()));
  EXPECT_EQ(functor.maximum(), std::vector<T>(2, std::numeric_limits<T>::lowest()));
  EXPECT_EQ(functor.minimumMagnitude(), std::numeric_limits<T>::max());
  EXPECT_EQ(functor.maximumMagnitude(), std::numeric_limits<T>::min());
}
} // namespace

TEST(RangeFunctor, NaNDoesNotDisturbOtherValues)
{
  const float nan = std::numeric_limits<float>::quiet_NaN();
  DataStore<float> store({ 6 }, { 1 });
  const float values[6] = { nan, 2.5f, nan, -1.0f, 8.0f, nan };
  std::memcpy(store.data(), values, sizeof(values));
  DataStructure ds;
  auto* host = Float32Array::Create(
    ds, "Confidence",
    std::make_shared<DataStore<float>>(store.getTupleShape(), store.getComponentShape()));
  std::memcpy(std::dynamic_pointer_cast<DataStore<float>>(host->getDataStore())->data(), values,
              sizeof(values));
  auto wrapped = CV::VtkBridge::WrapDataArray(ds, host->getId());
  double range[2];
  wrapped->GetRange(range, 0);
  EXPECT_EQ(range[0], -1.0);
  EXPECT_EQ(range[1], 8.0);

  CV::ComputeRangeFunctor<float> functor(&store);
  functor.run();
  EXPECT_EQ(functor.minimumMagnitude(), 1.0f);
  EXPECT_EQ(functor.maximumMagnitude(), 8.0f);
}

TEST(RangeFunctor, AllNaNKeepsInitialValuesAndMagnitudeFloorIsSmallestNormal)
{
  DataStore<double> store({ 4 }, { 1 }, std::numeric_limits<double>::quiet_NaN());
  CV::ComputeRangeFunctor<double> functor(&store, store.data());
  functor.run();
  EXPECT_EQ(functor.minimum()[0], std::numeric_limits<double>::max());
  EXPECT_EQ(functor.maximum()[0], std::numeric_limits<double>::lowest());
  // the largest-magnitude start is the smallest positive normal, not the lowest value
  EXPECT_EQ(functor.maximumMagnitude(), std::numeric_limits<double>::min());

  DataStore<float> zeros({ 5 }, { 1 }, 0.0f);
  CV::ComputeRangeFunctor<float> zeroFunctor(&zeros);
  zeroFunctor.run();
  EXPECT_EQ(zeroFunctor.maximumMagnitude(), std::numeric_limits<float>::min());
  EXPECT_EQ(zeroFunctor.minimumMagnitude(), 0.0f);
}

TEST(RangeFunctor, MagnitudesOfVectors)
{
  DataStore<int32> store({ 3 }, { 3 });
  const int32 values[9] = { 3, 4, 0, 1, 2, 2, -6, 8, 0 };
  std::memcpy(store.data(), values, sizeof(values));
  CV::ComputeRangeFunctor<int32> functor(&store, store.data());
  functor.run();
  EXPECT_EQ(functor.minimum(), (std::vector<int32>{ -6, 2, 0 }));
  EXPECT_EQ(functor.maximum(), (std::vector<int32>{ 3, 8, 2 }));
  EXPECT_EQ(functor.minimumMagnitude(), 3);
  EXPECT_EQ(functor.maximumMagnitude(), 10);
}

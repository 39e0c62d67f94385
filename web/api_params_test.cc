#include "web/api_params.h"

#include <gtest/gtest.h>

#include <optional>

namespace refgrove::web {
namespace {

TEST(ApiParams, IntegersAreDigitsInTheirRange) {
  const struct {
    const char* text;
    std::optional<int> value;  // none: a 400
  } cases[] = {
      {"0", 0},           {"2147483647", 2147483647},
      {"2147483648", {}}, {"-1", {}},
      {"", {}},           {"+1", {}},
      {" 1", {}},         {"1 ", {}},
      {"0x10", {}},       {"1e3", {}},
      {"12a", {}},        {"007", 7},
  };
  for (const auto& c : cases) {
    try {
      EXPECT_EQ(parse_int(c.text, "DID", 0, 2147483647), c.value) << '"' << c.text << '"';
    } catch (const ApiError& e) {
      EXPECT_FALSE(c.value) << '"' << c.text << "\": " << e.what();
      EXPECT_EQ(e.status(), 400);
      EXPECT_STREQ(e.what(), "DID must be an integer from 0 to 2147483647");
    }
  }
}

TEST(ApiParams, ChoicesAndYearRanges) {
  EXPECT_EQ(parse_choice("or", "mode", {"and", "or"}), 1u);
  try {
    parse_choice("xor", "mode", {"and", "or"});
    ADD_FAILURE() << "xor accepted";
  } catch (const ApiError& e) {
    EXPECT_STREQ(e.what(), "mode must be and or or");
  }
  const YearRange r = parse_years("1995-1999");
  EXPECT_EQ(r.from, 1995);
  EXPECT_EQ(r.to, 1999);
  for (const char* bad : {"1999-1995", "1995", "-1999", "1995-", "1995-1999-2000", "a-b", "10000-10001"}) {
    EXPECT_THROW(parse_years(bad), ApiError) << bad;
  }
}

}  // namespace
}  // namespace refgrove::web

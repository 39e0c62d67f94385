#include "module/host_terms.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "host/host_engine.h"

namespace {

class HostTermsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    lumox_sim::MachineSizes sizes;
    sizes.root_capacity = 1;
    sizes.slot_count = 3;  // one of them holds the empty list
    m_ = lumox_sim::create_machine(sizes);
  }
  void TearDown() override { lumox_sim::destroy_machine(m_); }

  // A variable made before the trail boundary is moved past it.
  term old_var() {
    const term v = lumox_sim::new_var(m_);
    lumox_sim::set_trail_boundary_to_heap_top(m_);
    return v;
  }
  term ref_to(term value) {
    term* cell = m_->heap_top++;
    *cell = value;
    return ref_term(cell);
  }
  int trail_size() const { return trail_mark(m_); }

  LumoxMachine* m_ = nullptr;
};

TEST_F(HostTermsTest, IntegerInputs) {
  const struct {
    const char* what;
    term arg;
    int value;
    bool complaint;
  } cases[] = {
      {"7", int_term(7), 7, false},
      {"-3", int_term(-3), -3, false},
      {"reference chain to 42", ref_to(ref_to(int_term(42))), 42, false},
      {"atom", lumox_sim::make_atom("abc"), -1, true},
      {"unbound variable", lumox_sim::new_var(m_), -1, true},
      {"float", lumox_sim::make_float(m_, 2.0), -1, true},
  };
  for (const auto& c : cases) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(read_int_arg(c.arg), c.value) << c.what;
    EXPECT_EQ(testing::internal::GetCapturedStderr(), c.complaint ? "Term has invalid type!\n" : "") << c.what;
  }
}

TEST_F(HostTermsTest, AtomNamesComeFromTheAtomPages) {
  const term a = lumox_sim::make_atom("A. B. Jones");
  EXPECT_STREQ(term_name(a), "A. B. Jones");
  EXPECT_STREQ(term_name(ref_to(a)), "A. B. Jones");
  // Fill the first page so that an atom lands on the second one.
  term last = a;
  for (std::uint32_t n = atom_index(a); n <= kAtomPageMask + 1; ++n) last = lumox_sim::make_atom("fill" + std::to_string(n));
  ASSERT_GE(atom_index(last), kAtomPageMask + 1);
  EXPECT_STREQ(term_name(last), lumox_sim::atom_text(last));
  EXPECT_EQ(atom_lookup(0, lumox_sim::atom_text(last)), static_cast<int>(atom_index(last)));
}

TEST_F(HostTermsTest, BindingIntegersAndAtoms) {
  const term smith = lumox_sim::make_atom("smith94"), doe = lumox_sim::make_atom("doe01");
  const struct {
    const char* what;
    term output;
    bool as_atom;  // bind smith94 instead of 1994
    bool ok;
  } cases[] = {
      {"unbound", lumox_sim::new_var(m_), false, true},
      {"same integer", int_term(1994), false, true},
      {"same integer through a reference", ref_to(int_term(1994)), false, true},
      {"other integer", int_term(1995), false, false},
      {"atom for an integer", smith, false, false},
      {"float for an integer", lumox_sim::make_float(m_, 1994.0), false, false},
      {"unbound for an atom", lumox_sim::new_var(m_), true, true},
      {"same atom", smith, true, true},
      {"other atom", doe, true, false},
      {"integer for an atom", int_term(1994), true, false},
  };
  for (const auto& c : cases) {
    const bool ok = c.as_atom ? bind_atom(m_, c.output, smith) : bind_int(m_, c.output, 1994);
    EXPECT_EQ(ok, c.ok) << c.what;
    if (ok) {
      EXPECT_EQ(deref(c.output), c.as_atom ? smith : int_term(1994)) << c.what;
    }
  }
}

TEST_F(HostTermsTest, OnlyVariablesOlderThanTheBoundaryAreTrailed) {
  const term older = old_var();
  const term newer = lumox_sim::new_var(m_);
  ASSERT_TRUE(bind_int(m_, newer, 1));
  EXPECT_EQ(trail_size(), 0);
  ASSERT_TRUE(bind_int(m_, older, 2));
  ASSERT_EQ(trail_size(), 1);
  EXPECT_EQ(m_->trail_base[0], older);
  undo_trail(m_, 0);
  EXPECT_TRUE(is_unbound(older));
  EXPECT_EQ(deref(newer), int_term(1));
}

TEST_F(HostTermsTest, TrailPastItsLimitAsksForRoom) {
  const int before = lumox_sim::call_counts().tr_overflow;
  m_->trail_limit = m_->trail_base;  // the next push after this one is past it
  ASSERT_TRUE(bind_int(m_, old_var(), 1));
  EXPECT_EQ(lumox_sim::call_counts().tr_overflow, before);
  ASSERT_TRUE(bind_atom(m_, old_var(), lumox_sim::nil()));
  EXPECT_EQ(lumox_sim::call_counts().tr_overflow, before + 1);
  EXPECT_EQ(trail_size(), 2);
}

TEST_F(HostTermsTest, FloatBinding) {
  const term d = lumox_sim::new_var(m_);
  term* const box = m_->heap_top;
  ASSERT_TRUE(bind_float(m_, d, 0.25));
  EXPECT_EQ(m_->heap_top, box + 3);  // header and double: 12 bytes
  EXPECT_EQ(box[0], kFloatHeader);
  EXPECT_EQ(deref_keep_box(d), ref_term(box));
  EXPECT_EQ(lumox_sim::float_value(ref_term(box)), 0.25);

  const struct {
    const char* what;
    term output;
    bool ok;
  } bound[] = {
      {"equal float", lumox_sim::make_float(m_, 0.0), true},
      {"negative zero", lumox_sim::make_float(m_, -0.0), true},
      {"other float", lumox_sim::make_float(m_, 0.5), false},
      {"integer 0", int_term(0), false},
      {"atom", lumox_sim::make_atom("zero"), false},
  };
  for (const auto& c : bound) {
    term* const top = m_->heap_top;
    EXPECT_EQ(bind_float(m_, c.output, 0.0), c.ok) << c.what;
    EXPECT_EQ(m_->heap_top, top) << c.what << ": nothing is built for a bound output";
  }
}

TEST_F(HostTermsTest, RootStackDoublesAndKeepsItsEntries) {
  const term f = lumox_sim::make_float(m_, 1.5);
  const term values[] = {int_term(1), ref_to(int_term(2)), f, ref_to(f), lumox_sim::nil()};
  for (int k = 0; k < 5; ++k) EXPECT_EQ(root_push(m_, values[k]), k);
  EXPECT_EQ(m_->root_count, 5);
  EXPECT_EQ(m_->root_capacity, 8);  // 1, 2, 4, 8
  EXPECT_EQ(root_at(m_, 0), int_term(1));
  EXPECT_EQ(root_at(m_, 1), int_term(2));
  EXPECT_EQ(root_at(m_, 2), f);  // the box reference, not its header
  EXPECT_EQ(root_at(m_, 3), f);
  EXPECT_EQ(root_at(m_, 4), lumox_sim::nil());
}

TEST_F(HostTermsTest, SlotsComeBackInReverseOrder) {
  const int free_before = lumox_sim::free_slot_count(m_);
  const std::int32_t head = m_->free_slot;
  int first = -1, second = -1;
  {
    SymbolSlot a(m_, int_term(1));
    SymbolSlot b(m_);
    first = a.index();
    second = b.index();
    EXPECT_EQ(first, head);
    EXPECT_NE(first, second);
    EXPECT_EQ(b.get(), nil_atom);
    const int expansions = lumox_sim::call_counts().expand_slots;
    SymbolSlot c(m_, int_term(3));  // none was free
    EXPECT_EQ(lumox_sim::call_counts().expand_slots, expansions + 1);
    EXPECT_EQ(a.get(), int_term(1));
    EXPECT_EQ(c.get(), int_term(3));
  }
  // c, b, then a went back: the list starts with a, then b.
  EXPECT_EQ(m_->free_slot, first);
  EXPECT_EQ(static_cast<std::int32_t>(m_->slots[first]), second);
  EXPECT_EQ(lumox_sim::free_slot_count(m_), free_before + 3);  // the array has grown
  EXPECT_EQ(m_->slots[_lumox_atom_nil_0], lumox_sim::nil());
}

TEST_F(HostTermsTest, AtomSlotFromANonAtomThrowsAndFreesItsSlots) {
  const int free_before = lumox_sim::free_slot_count(m_);
  try {
    SymbolSlot held(m_);
    AtomSlot bad(m_, int_term(3));
    FAIL() << "no exception";
  } catch (const LumoxObjectCreationError& e) {
    EXPECT_STREQ(e.message, "LUMOX_atom:term is not an atom");
  }
  EXPECT_EQ(lumox_sim::free_slot_count(m_), free_before);

  AtomSlot made(m_, "walks");
  EXPECT_STREQ(made.text(), "walks");
  EXPECT_EQ(made.get(), lumox_sim::make_atom("walks"));
}

TEST_F(HostTermsTest, FailedUnificationLeavesNoBindings) {
  const term x = old_var(), y = old_var();
  const term pattern = lumox_sim::make_list(m_, {x, int_term(5), y}, lumox_sim::nil());
  const term value = lumox_sim::make_list(m_, {int_term(9), int_term(6), int_term(3)}, lumox_sim::nil());
  EXPECT_FALSE(unify_or_undo(m_, pattern, value));
  EXPECT_TRUE(is_unbound(x));
  EXPECT_EQ(trail_size(), 0);
  const term good = lumox_sim::make_list(m_, {int_term(9), int_term(5), int_term(3)}, lumox_sim::nil());
  EXPECT_TRUE(unify_or_undo(m_, pattern, good));
  EXPECT_EQ(deref(x), int_term(9));
  EXPECT_EQ(deref(y), int_term(3));
}

}  // namespace

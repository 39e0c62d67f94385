#include "module/host_terms.h"

#include <gtest/gtest.h>

#include <string>

#include "host/host_engine.h"

namespace refgrove {

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

// Anything but a small integer is reported and read as -1.
TEST_F(HostTermsTest, IntegerInputs) {
  const struct {
    const char* what;
    term arg;
    int value;
  } cases[] = {
      {"7", int_term(7), 7},
      {"-3", int_term(-3), -3},
      {"reference chain to 42", ref_to(ref_to(int_term(42))), 42},
      {"atom", lumox_sim::make_atom("abc"), -1},
      {"unbound variable", lumox_sim::new_var(m_), -1},
      {"float", lumox_sim::make_float(m_, 2.0), -1},
  };
  for (const auto& c : cases) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(read_int_arg(c.arg), c.value) << c.what;
    EXPECT_EQ(testing::internal::GetCapturedStderr(), c.value == -1 ? "Term has invalid type!\n" : "") << c.what;
  }
}

TEST_F(HostTermsTest, AtomNamesComeFromTheAtomPages) {
  const term a = lumox_sim::make_atom("A. B. Jones");
  EXPECT_STREQ(term_name(a), "A. B. Jones");
  EXPECT_STREQ(term_name(ref_to(a)), "A. B. Jones");
  // Fill the first page so that an atom lands on the second one.
  term last = a;
  for (std::uint32_t n = atom_index(a); n <= kAtomPageMask + 1; ++n) {
    last = lumox_sim::make_atom("fill" + std::to_string(n));
  }
  ASSERT_GE(atom_index(last), kAtomPageMask + 1);
  EXPECT_STREQ(term_name(last), lumox_sim::atom_text(last));
  EXPECT_EQ(atom_lookup(0, lumox_sim::atom_text(last)), static_cast<int>(atom_index(last)));
}

// An unbound float output is bound to a new box: header, then the double.
TEST_F(HostTermsTest, FloatBoxes) {
  const term d = lumox_sim::new_var(m_);
  term* const box = m_->heap_top;
  ASSERT_TRUE(bind_float(m_, d, 0.25));
  EXPECT_EQ(m_->heap_top, box + 3);  // 12 bytes
  EXPECT_EQ(box[0], kFloatHeader);
  EXPECT_EQ(deref_keep_box(d), ref_term(box));
  EXPECT_EQ(lumox_sim::float_value(ref_term(box)), 0.25);
}

// Only variables older than the boundary are trailed, and a push past the
// trail's limit first asks the host for room.
TEST_F(HostTermsTest, Trailing) {
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

  const int before = lumox_sim::call_counts().tr_overflow;
  m_->trail_limit = m_->trail_base;  // the next push after this one is past it
  ASSERT_TRUE(bind_int(m_, old_var(), 1));
  EXPECT_EQ(lumox_sim::call_counts().tr_overflow, before);
  ASSERT_TRUE(bind_atom(m_, old_var(), lumox_sim::nil()));
  EXPECT_EQ(lumox_sim::call_counts().tr_overflow, before + 1);
  EXPECT_EQ(trail_size(), 2);
}

// Entries are dereferenced, floats kept as the reference to their box.
TEST_F(HostTermsTest, RootStackDoublesAndKeepsItsEntries) {
  const term f = lumox_sim::make_float(m_, 1.5);
  const term pushed[] = {int_term(1), ref_to(int_term(2)), f, ref_to(f), lumox_sim::nil()};
  const term kept[] = {int_term(1), int_term(2), f, f, lumox_sim::nil()};
  for (int k = 0; k < 5; ++k) EXPECT_EQ(root_push(m_, pushed[k]), k);
  for (int k = 0; k < 5; ++k) EXPECT_EQ(root_at(m_, k), kept[k]) << k;
  EXPECT_EQ(m_->root_count, 5);
  EXPECT_EQ(m_->root_capacity, 8);  // 1, 2, 4, 8
}

// Slots go back to the free list in the reverse order of their allocation,
// also when an AtomSlot made from a non-atom throws.
TEST_F(HostTermsTest, SlotsComeBackInReverseOrder) {
  const int free_before = lumox_sim::free_slot_count(m_);
  try {
    SymbolSlot held(m_);
    AtomSlot bad(m_, int_term(3));
    FAIL() << "no exception";
  } catch (const LumoxObjectCreationError& e) {
    EXPECT_STREQ(e.message, "LUMOX_atom:term is not an atom");
  }
  EXPECT_EQ(lumox_sim::free_slot_count(m_), free_before);

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

}  // namespace

}  // namespace refgrove

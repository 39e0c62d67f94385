// NodeMarks: per-thread work arrays over node numbers (visited flags with a
// value: a parent, a hop count, a counter) for the searches of this folder.
//
// Each search takes the marks of its thread, which clears them in constant
// time by moving to a new epoch, so a search costs what it visits and not
// the size of the graph. Two sides are kept, for searches from both ends.
#ifndef REFGROVE_NETWORK_NODE_MARKS_H_
#define REFGROVE_NETWORK_NODE_MARKS_H_

#include <cstdint>
#include <vector>

namespace refgrove {

class NodeMarks {
 public:
  // The marks of the calling thread for nodes 0 .. n - 1, none set. The
  // reference stays valid on this thread until the next call of fresh().
  static NodeMarks& fresh(std::size_t n);

  bool marked(int side, std::int32_t v) const { return stamp_[side][at(v)] == epoch_; }
  void mark(int side, std::int32_t v, std::int32_t value) {
    stamp_[side][at(v)] = epoch_;
    value_[side][at(v)] = value;
  }
  // The value of a marked node.
  std::int32_t value(int side, std::int32_t v) const { return value_[side][at(v)]; }
  std::int32_t& value_ref(int side, std::int32_t v) { return value_[side][at(v)]; }

 private:
  static std::size_t at(std::int32_t v) { return static_cast<std::size_t>(v); }

  std::vector<std::uint32_t> stamp_[2];
  std::vector<std::int32_t> value_[2];
  std::uint32_t epoch_ = 0;
};

// A per-thread set of nodes as one bit each, small enough to stay in the
// cache where NodeMarks would not: for searches that test many nodes for
// membership. It is taken empty and must be left empty (remove what was
// added) before the next take().
class NodeBits {
 public:
  static NodeBits& take(std::size_t n);

  bool contains(std::int32_t v) const { return (words_[word(v)] >> bit(v)) & 1u; }
  void insert(std::int32_t v) { words_[word(v)] |= std::uint64_t{1} << bit(v); }
  void remove(std::int32_t v) { words_[word(v)] &= ~(std::uint64_t{1} << bit(v)); }

 private:
  static std::size_t word(std::int32_t v) { return static_cast<std::size_t>(v) >> 6; }
  static unsigned bit(std::int32_t v) { return static_cast<unsigned>(v) & 63u; }

  std::vector<std::uint64_t> words_;
};

}  // namespace refgrove

#endif  // REFGROVE_NETWORK_NODE_MARKS_H_

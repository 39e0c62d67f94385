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

}  // namespace refgrove

#endif  // REFGROVE_NETWORK_NODE_MARKS_H_

#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

namespace tme {

/// Memory for many nodes of one size, in chunks. Each node stays at one address, and all are given up at once.
class NodePool {
 public:
  explicit NodePool(std::size_t node_bytes) : node_bytes_(node_bytes) {}

  void* Take() {
    if (next_ == end_) AddChunk();
    void* node = next_;
    next_ += node_bytes_;
    return node;
  }

  void Clear() {
    chunks_.clear();
    chunk_nodes_ = kFirstChunk;
    next_ = end_ = nullptr;
  }

 private:
  // A small document takes a few kilobytes, a large one few chunks.
  static constexpr std::size_t kFirstChunk = 64;
  static constexpr std::size_t kLargestChunk = std::size_t{1} << 14;

  void AddChunk() {
    const std::size_t bytes = chunk_nodes_ * node_bytes_;
    next_ = chunks_.emplace_back(std::make_unique_for_overwrite<std::byte[]>(bytes)).get();
    end_ = next_ + bytes;
    chunk_nodes_ = std::min(2 * chunk_nodes_, kLargestChunk);
  }

  std::size_t node_bytes_;
  std::size_t chunk_nodes_ = kFirstChunk;
  std::vector<std::unique_ptr<std::byte[]>> chunks_;
  std::byte* next_ = nullptr;
  std::byte* end_ = nullptr;
};

}  // namespace tme

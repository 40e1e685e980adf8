#include <ZolvaCheckoutKit/C/Internal/ZLVHandles.h>
#include <ZolvaCheckoutKit/C/Internal/ZLVHostQueue.h>

namespace {

auto& blocks() {
  // Never destroyed: blocks may still come in while the process exits.
  static auto& blocks =
      *new ZLVHandles<zlv_block, ZLVOnce<void()>>(ZLVHandleKind::Block, "zlv_block");
  return blocks;
}

}  // namespace

void ZLVHostQueue::dispatch(ZLVOnce<void()> block) {
  host_.dispatch(host_.context, blocks().add(std::move(block)));
}

zlv_result zlv_block_run(zlv_block* block) {
  return ZLVResultOf([&] {
    auto taken = blocks().take(block);
    ZLVRunReporting([&] { std::move(taken)(); });
  });
}

zlv_result zlv_block_release(zlv_block* block) {
  return ZLVResultOf([&] { blocks().take(block); });
}

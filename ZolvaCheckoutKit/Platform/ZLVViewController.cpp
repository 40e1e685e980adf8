#include <utility>

#include <ZolvaCheckoutKit/Platform/ZLVViewController.h>

ZLVViewController::~ZLVViewController() {
  if (presented_ != nullptr) presented_->presenting_ = nullptr;
  for (const auto& child : children_) child->parent_ = nullptr;
}

void ZLVViewController::presentViewController(std::shared_ptr<ZLVViewController> controller,
                                              bool animated, ZLVOnce<void()> completion) {
  if (controller == nullptr || presented_ != nullptr || controller->presenting_ != nullptr) return;
  presented_ = std::move(controller);
  presented_->presenting_ = this;
  if (!std::exchange(presented_->isViewLoaded_, true)) presented_->viewDidLoad();
  presented_->viewWillAppear(animated);
  std::move(completion)();
}

void ZLVViewController::dismissViewControllerAnimated(bool animated, ZLVOnce<void()> completion) {
  if (presented_ == nullptr) {
    if (presenting_ == nullptr) return;
    return presenting_->dismissViewControllerAnimated(animated, std::move(completion));
  }
  // What ends here may dismiss more, this controller included, and present something else.
  const auto self = weak_from_this().lock();
  const auto* const leaving = presented_.get();
  if (presented_->presented_ != nullptr) presented_->dismissViewControllerAnimated(animated);
  if (presented_.get() == leaving) {
    const auto gone = std::move(presented_);
    gone->viewWillDisappear(animated);
    gone->presenting_ = nullptr;
  }
  std::move(completion)();
}

void ZLVViewController::addChildViewController(std::shared_ptr<ZLVViewController> child) {
  child->parent_ = this;
  children_.push_back(std::move(child));
}

std::shared_ptr<ZLVViewController> ZLVViewController::removeLastChildViewController() {
  if (children_.empty()) return nullptr;
  auto child = std::move(children_.back());
  children_.pop_back();
  child->parent_ = nullptr;
  return child;
}

ZLVExactClass ZLVNavigationController::exactClass() const noexcept { return ownClass; }

void ZLVNavigationController::pushViewController(std::shared_ptr<ZLVViewController> controller) {
  addChildViewController(std::move(controller));
}

std::shared_ptr<ZLVViewController> ZLVNavigationController::popViewController() {
  return removeLastChildViewController();
}

// handler_slot.hpp - a process-wide function pointer that programs set.
//
// Empty at load, never reset by the library, no lock: a report made while another thread changes
// the handler reaches the old one or the new one.
#pragma once

#include <atomic>

namespace vox {

template <class Handler>
class handler_slot {
  public:
    Handler get() const { return handler_.load(std::memory_order_acquire); }

    // Returns what was there, null for nothing.
    Handler set(Handler handler) { return handler_.exchange(handler, std::memory_order_acq_rel); }

    // The same for a service whose behaviour without a handler has a name. A program that puts back
    // what the setter returned gets the empty slot back.
    Handler set(Handler handler, Handler standard) {
        const Handler old = set(handler == standard ? nullptr : handler);
        return old ? old : standard;
    }

    void set_if_empty(Handler handler) {
        Handler empty = nullptr;
        handler_.compare_exchange_strong(empty, handler, std::memory_order_acq_rel);
    }

  private:
    std::atomic<Handler> handler_{};
};

} // namespace vox

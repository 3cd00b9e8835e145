// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <list>

#include "Mutex.h"

namespace vela {

/** Callers in the order in which they came. A mutex would let one that calls again and again keep
 * the others waiting: it is back before those have woken up. */
class CallerTurns {
  public:
    /** Waits for the calling thread's turn, and gives it on to the next. */
    class Turn {
      public:
        explicit Turn(CallerTurns& turns) : turns(turns) {
            MutexLock lock(turns.mutex);
            if (!turns.isTaken) {
                turns.isTaken = true;
                return;
            }
            Waiter self;
            turns.waiting.push_back(&self);
            while (!self.isNext) {
                self.called.wait(lock);
            }
        }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;
        ~Turn() {
            const MutexLock lock(turns.mutex);
            if (turns.waiting.empty()) {
                turns.isTaken = false;
                return;
            }
            Waiter* const next = turns.waiting.front();
            turns.waiting.pop_front();
            next->isNext = true;
            next->called.notifyOne();
        }

      private:
        CallerTurns& turns;
    };

  private:
    struct Waiter {
        Condition called;
        bool isNext = false;
    };

    Mutex mutex;
    std::list<Waiter*> waiting VELA_GUARDED_BY(mutex);
    bool isTaken VELA_GUARDED_BY(mutex) = false;
};

}  // namespace vela

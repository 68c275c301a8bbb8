// What all threads with windows or messages share, and the lock around it.
#include "MessageState.h"

#include "MessageQueue.h"

MessageState::MessageState() : queueSlot(FlsAlloc(MessageQueue::ThreadEnded)) {
    InitializeCriticalSection(&lock);
}

MessageState& MessageState::Get() {
    static MessageState& state = *new MessageState;
    return state;
}

#include "MessageState.h"

#include "MessageQueue.h"

MessageState::MessageState() : queueSlot(FlsAlloc(MessageQueue::ThreadEnded)) {
    InitializeCriticalSection(&lock);
}

MessageState& MessageState::Get() {
    static MessageState& state = *new MessageState;
    return state;
}

#include "MessageQueue.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <thread>

#include "MessageState.h"

namespace {

constexpr std::size_t kMostPosted = 10000;
// Beside the QS_ flags: a message that this thread has sent is answered.
constexpr UINT kAnswer = 0x80000000;
constexpr UINT kScreenKinds = QS_INPUT | QS_PAINT;

using Clock = std::chrono::steady_clock;

// Who fills a window from another thread sends thousands of messages in a row, each behind the answer to the one before. To
// sleep and wake for each of them takes ten times as long as the messages themselves, so both sides look for the next one
// for a moment first; the screen gets its turn in between.
constexpr auto kSpin = std::chrono::microseconds(50);
constexpr auto kBurst = std::chrono::milliseconds(5);

}  // namespace

MessageQueue::MessageQueue() : threadId(GetCurrentThreadId()) {}

MessageQueue* MessageQueue::Current() {
    const DWORD slot = MessageState::Get().queueSlot;
    auto* queue = static_cast<MessageQueue*>(FlsGetValue(slot));
    if (queue != nullptr) {
        return queue;
    }
    queue = new (std::nothrow) MessageQueue;
    if (queue == nullptr || !queue->wait.IsUsable() || !FlsSetValue(slot, queue)) {
        delete queue;
        return nullptr;
    }
    return queue;
}

void WINAPI MessageQueue::ThreadEnded(LPVOID object) {
    auto* queue = static_cast<MessageQueue*>(object);
    {
        const MessageLock state;
        for (HWND window : state->windows.HandlesOf([=](const Window& one) { return &one.owner == queue; })) {
            queue->Purge(window);
            state->windows.Remove(window);
        }
    }
    delete queue;
}

void MessageQueue::Arrived(UINT kinds) {
    newKinds |= kinds;
    if ((awaited & kinds) != 0) {
        // One wake-up for one sleep, however many messages follow.
        awaited = 0;
        if (sleepsInScreen) {
            screen->Wake();
        } else {
            wait.Wake();
        }
    }
}

void MessageQueue::ScreenHas(UINT kinds) {
    const MessageLock state;
    Arrived(kinds);
}

bool MessageQueue::Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (posted.size() >= kMostPosted) {
        return false;
    }
    posted.push_back({window, message, wParam, lParam, GetTickCount(), {0, 0}});
    Arrived(QS_POSTMESSAGE);
    return true;
}

void MessageQueue::AddSent(SentMessage& message) {
    message.isToScreen = screen != nullptr;
    sent.push_back(&message);
    Arrived(QS_SENDMESSAGE);
}

void MessageQueue::Answer(SentMessage& message, LRESULT result) {
    message.result = result;
    message.answered = true;
    message.sender.Arrived(kAnswer);
}

void MessageQueue::Purge(HWND window) {
    timers.KillAll(window);
    std::erase_if(posted, [window](const MSG& message) { return message.hwnd == window; });
    std::erase_if(sent, [window](SentMessage* message) {
        if (message->window != window) {
            return false;
        }
        Answer(*message, 0);
        return true;
    });
}

bool MessageQueue::ServeSent() {
    SentMessage* message = nullptr;
    WNDPROC procedure = nullptr;
    {
        const MessageLock state;
        if (sent.empty()) {
            newKinds &= ~QS_SENDMESSAGE;
            return false;
        }
        message = sent.front();
        sent.pop_front();
        // The window is there: it would have taken the message with it.
        procedure = state->windows.Find(message->window)->Procedure();
    }
    const LRESULT result = procedure(message->window, message->message, message->wParam, message->lParam);
    const MessageLock state;
    Answer(*message, result);
    return true;
}

void MessageQueue::ServeBurst() {
    if (!ServeSent()) {
        return;
    }
    const auto end = Clock::now() + kBurst;
    do {
        while (ServeSent()) {}
    } while (screen != nullptr && Clock::now() < end && Spin(QS_SENDMESSAGE));
}

// Waits awake; false if nothing of the kinds has come. With a single processor nothing could.
bool MessageQueue::Spin(UINT kinds) const {
    static const bool hasOthers = std::thread::hardware_concurrency() > 1;
    const auto end = Clock::now() + kSpin;
    while (hasOthers && Clock::now() < end) {
        if ((newKinds & kinds) != 0) {
            return true;
        }
    }
    return false;
}

LRESULT MessageQueue::WaitForAnswer(const SentMessage& message) {
    for (;;) {
        {
            // The answer goes before what is sent to the caller, or a flood of that would keep the caller here.
            const MessageLock state;
            if (message.answered) {
                return message.result;
            }
            newKinds &= ~kAnswer;
        }
        if (!ServeSent() && !(message.isToScreen && Spin(QS_SENDMESSAGE | kAnswer))) {
            Sleep(QS_SENDMESSAGE | kAnswer, 0, nullptr, INFINITE);
        }
    }
}

bool MessageQueue::Look(MSG& found, const MessageFilter& filter, UINT kinds, bool remove) {
    const bool onScreen = screen != nullptr && (kinds & kScreenKinds) != 0;
    if (onScreen) {
        screen->Poll();
    }
    for (;;) {
        ServeBurst();
        {
            const MessageLock state;
            if (!sent.empty()) {
                continue;
            }
            newKinds &= ~(kinds & (QS_POSTMESSAGE | QS_TIMER | kScreenKinds));
            if ((kinds & QS_POSTMESSAGE) != 0 && TakePosted(found, filter, remove)) {
                return true;
            }
        }
        if (onScreen && TakeFromScreen(found, filter, kinds, remove)) {
            return true;
        }
        const MessageLock state;
        // What the screen has done may have made others send.
        if (!sent.empty()) {
            continue;
        }
        return (kinds & QS_TIMER) != 0 && TakeTimer(found, filter, remove);
    }
}

bool MessageQueue::TakeFromScreen(MSG& found, const MessageFilter& filter, UINT kinds, bool remove) {
    return ((kinds & QS_INPUT) != 0 && screen->TakeInput(found, filter, remove)) ||
           ((kinds & QS_PAINT) != 0 && screen->TakePaint(found, filter));
}

bool MessageQueue::TakePosted(MSG& found, const MessageFilter& filter, bool remove) {
    const auto first = std::find_if(posted.begin(), posted.end(),
                                    [&filter](const MSG& message) { return filter.Matches(message.hwnd, message.message); });
    if (first != posted.end()) {
        found = *first;
        if (remove) {
            posted.erase(first);
        }
        return true;
    }
    // WM_QUIT passes every filter, but comes only when all that was posted is gone.
    if (quitting && posted.empty()) {
        found = {nullptr, WM_QUIT, static_cast<WPARAM>(quitCode), 0, GetTickCount(), {0, 0}};
        quitting = !remove;
        return true;
    }
    return false;
}

bool MessageQueue::TakeTimer(MSG& found, const MessageFilter& filter, bool remove) {
    const DWORD now = GetTickCount();
    timers.Update(now);
    Timer* timer = timers.FirstReady(filter);
    if (timer == nullptr) {
        return false;
    }
    found = {timer->window, WM_TIMER, timer->id, reinterpret_cast<LPARAM>(timer->procedure), now, {0, 0}};
    timer->ready = !remove;
    return true;
}

bool MessageQueue::IsNew(UINT kinds) {
    if (timers.Update(GetTickCount())) {
        newKinds |= QS_TIMER;
    }
    return (newKinds & kinds) != 0;
}

DWORD MessageQueue::Sleep(UINT kinds, DWORD count, const HANDLE* handles, DWORD milliseconds) {
    const DWORD start = GetTickCount();
    for (;;) {
        bool isNew = false;
        {
            const MessageLock state;
            isNew = IsNew(kinds);
            awaited = isNew ? 0 : kinds;
            sleepsInScreen = SleepsInScreen(kinds, count);
        }
        if (isNew) {
            const DWORD handle = count > 0 ? WaitForMultipleObjects(count, handles, FALSE, 0) : WAIT_TIMEOUT;
            return handle != WAIT_TIMEOUT ? handle : WAIT_OBJECT_0 + count;
        }
        const DWORD now = GetTickCount();
        const DWORD left = milliseconds == INFINITE ? INFINITE : milliseconds - std::min(milliseconds, now - start);
        const DWORD untilTimer = (kinds & QS_TIMER) != 0 ? timers.UntilNextMs(now) : INFINITE;
        const DWORD result = WaitForInput(kinds, count, handles, std::min(left, untilTimer));
        {
            const MessageLock state;
            awaited = 0;
        }
        if (result == WAIT_TIMEOUT ? left == 0 : result != WAIT_OBJECT_0 + count) {
            return result;
        }
    }
}

// The window system and handles cannot be waited for together; a thread with a screen waits for handles while it serves
// nothing but sent messages.
bool MessageQueue::SleepsInScreen(UINT kinds, DWORD count) const {
    return screen != nullptr && count == 0 && (kinds & kScreenKinds) != 0;
}

DWORD MessageQueue::WaitForInput(UINT kinds, DWORD count, const HANDLE* handles, DWORD milliseconds) {
    if (!SleepsInScreen(kinds, count)) {
        return wait.Wait(count, handles, milliseconds);
    }
    // Whatever ended that wait shows in what is new.
    screen->Wait(milliseconds);
    return WAIT_TIMEOUT;
}

void MessageQueue::Quit(int exitCode) {
    const MessageLock state;
    quitting = true;
    quitCode = exitCode;
    Arrived(QS_POSTMESSAGE);
}

// The message queue of one thread: what was sent and posted to its windows, its quit flag and its timers.
#pragma once

#include <windows.h>

#include <atomic>
#include <deque>

#include "MessageFilter.h"
#include "QueueWait.h"
#include "Screen.h"
#include "TimerList.h"

class MessageQueue;

// A message that the thread of another queue waits to have served. It lives on the sender's stack until it is answered.
struct SentMessage {
    HWND window;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    MessageQueue& sender;
    bool isToScreen = false;  // the window's thread has a desktop
    LRESULT result = 0;
    bool answered = false;
};

// Every thread that makes a window, sends to another thread or looks for messages has one queue, from the first such call
// until it ends.
//
// A kind of input (QS_SENDMESSAGE, QS_POSTMESSAGE, QS_INPUT, QS_PAINT, QS_TIMER) is new from its arrival until the thread
// looks for that kind. Sleep ends for new input alone and starts by looking for it, so nothing that arrives between a look
// and a sleep is missed.
class MessageQueue {
public:
    // The calling thread's queue, made now if need be; null if the system has nothing left.
    static MessageQueue* Current();
    // Runs at the end of a thread that has a queue: its windows are gone, and who waits for them is answered with 0.
    static void WINAPI ThreadEnded(LPVOID queue);

    MessageQueue(const MessageQueue&) = delete;
    MessageQueue& operator=(const MessageQueue&) = delete;

    bool IsCurrent() const { return threadId == GetCurrentThreadId(); }
    DWORD ThreadId() const { return threadId; }

    // From any thread, with the lock held.

    // False for a full queue.
    bool Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void AddSent(SentMessage& sent);

    // From the queue's own thread alone, with the lock held.

    // Takes everything with it that concerns a window.
    void Purge(HWND window);

    // From the queue's own thread alone, without the lock.

    // Runs the procedure for the oldest message that another thread has sent; false if there is none.
    bool ServeSent();
    // Serves what is sent meanwhile.
    LRESULT WaitForAnswer(const SentMessage& sent);
    // Serves what was sent, then looks for a posted message, WM_QUIT and a timer, as far as the kinds (QS_ flags) name them.
    bool Look(MSG& found, const MessageFilter& filter, UINT kinds, bool remove);
    // Waits for new input of the kinds (WAIT_OBJECT_0 + count), a handle (its index) or the end of the time (WAIT_TIMEOUT).
    // Of input and a handle the handle goes first.
    DWORD Sleep(UINT kinds, DWORD count, const HANDLE* handles, DWORD milliseconds);
    void Quit(int exitCode);
    // The desktop of this thread, from now until the thread ends or null is given.
    void SetScreen(Screen* newScreen) { screen = newScreen; }
    Screen* GetScreen() const { return screen; }
    // The screen has input or something to paint (QS_ flags).
    void ScreenHas(UINT kinds);

    TimerList timers;  // the queue's own thread alone

private:
    MessageQueue();
    ~MessageQueue() = default;

    void Arrived(UINT kinds);
    static void Answer(SentMessage& sent, LRESULT result);
    bool TakePosted(MSG& found, const MessageFilter& filter, bool remove);
    bool TakeFromScreen(MSG& found, const MessageFilter& filter, UINT kinds, bool remove);
    bool SleepsInScreen(UINT kinds, DWORD count) const;
    DWORD WaitForInput(UINT kinds, DWORD count, const HANDLE* handles, DWORD milliseconds);
    bool TakeTimer(MSG& found, const MessageFilter& filter, bool remove);
    bool IsNew(UINT kinds);
    void ServeBurst();
    bool Spin(UINT kinds) const;

    const DWORD threadId;
    QueueWait wait;
    Screen* screen = nullptr;  // written by the queue's own thread; read by others under the lock while it sleeps there
    bool quitting = false;     // the queue's own thread alone, and the code with it
    int quitCode = 0;

    // Under the lock, by any thread.
    std::deque<MSG> posted;         // oldest first
    std::deque<SentMessage*> sent;  // oldest first, not yet served
    // QS_ flags, and kAnswer. The queue's own thread reads it without the lock as well.
    std::atomic<UINT> newKinds = 0;
    UINT awaited = 0;             // of these the ones that end the sleep under way; 0 while awake
    bool sleepsInScreen = false;  // where that sleep is
};

#include "Run.h"
#include "ThreadTools.h"

void RunProgram(const std::function<void()>& body) {
    const Thread main(body);
}

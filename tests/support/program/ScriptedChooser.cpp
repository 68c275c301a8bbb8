#include "ScriptedChooser.h"

#include <cstdio>
#include <utility>

namespace scripted {

namespace {

std::optional<std::string> answer;
std::optional<ChooserRequest> request;

// Up to the two zero bytes at its end.
std::string FilterText(const char* filters) {
    std::string text;
    for (; filters[0] != '\0' || filters[1] != '\0'; ++filters) {
        text += filters[0] == '\0' ? '|' : filters[0];
    }
    return text;
}

BOOL Answer(OPENFILENAMEA* chooser, bool saves) {
    request = {saves,
               chooser->hwndOwner,
               FilterText(chooser->lpstrFilter),
               chooser->nFilterIndex,
               chooser->lpstrFile,
               chooser->lpstrInitialDir,
               chooser->lpstrTitle,
               chooser->lpstrDefExt,
               chooser->Flags};
    if (answer) {
        std::snprintf(chooser->lpstrFile, chooser->nMaxFile, "%s", answer->c_str());
    }
    return answer ? TRUE : FALSE;
}

}  // namespace

void AnswerChooser(std::optional<std::string> path) {
    answer = std::move(path);
}

std::optional<ChooserRequest> TakeChooserRequest() {
    return std::exchange(request, std::nullopt);
}

BOOL CALLBACK OpenFile(OPENFILENAMEA* chooser) {
    return Answer(chooser, false);
}

BOOL CALLBACK SaveFile(OPENFILENAMEA* chooser) {
    return Answer(chooser, true);
}

BOOL CALLBACK PickFont(CHOOSEFONTA* chooser) {
    return onFont && onFont(*chooser) ? TRUE : FALSE;
}

}  // namespace scripted

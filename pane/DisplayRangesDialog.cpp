#include "DisplayRangesDialog.h"

#include "resource.h"

namespace {

constexpr int kTextSize = 500;
constexpr int kCaptionSize = 100;

struct Field {
    int id;
    WPARAM digits;
    std::int32_t DisplayRanges::* number;
};

constexpr Field kFields[] = {
    {IDC_DISC_FROM, 3, &DisplayRanges::discFrom},   {IDC_DISC_TO, 3, &DisplayRanges::discTo},
    {IDC_ALBUM_FROM, 3, &DisplayRanges::albumFrom}, {IDC_ALBUM_TO, 3, &DisplayRanges::albumTo},
    {IDC_TRACK_FROM, 2, &DisplayRanges::trackFrom}, {IDC_TRACK_TO, 2, &DisplayRanges::trackTo},
};

struct Label {
    int id;
    UINT stringId;
};

constexpr Label kLabels[] = {
    {IDC_DISC_FROM_LABEL, IDS_RANGES_FROM}, {IDC_DISC_TO_LABEL, IDS_RANGES_TO},      {IDC_ALBUM_FROM_LABEL, IDS_RANGES_FROM},
    {IDC_ALBUM_TO_LABEL, IDS_RANGES_TO},    {IDC_TRACK_FROM_LABEL, IDS_RANGES_FROM}, {IDC_TRACK_TO_LABEL, IDS_RANGES_TO},
};

HINSTANCE InstanceOf(HWND window) {
    return reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(window, GWLP_HINSTANCE));
}

}  // namespace

int DisplayRangesDialog::Run(HWND owner) {
    const INT_PTR result =
        DialogBoxParamA(InstanceOf(owner), MAKEINTRESOURCEA(IDD_RANGES), owner, DialogProc, reinterpret_cast<LPARAM>(this));
    return result == 1 ? 1 : 0;
}

INT_PTR CALLBACK DisplayRangesDialog::DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<DisplayRangesDialog*>(message == WM_INITDIALOG ? static_cast<LONG_PTR>(lParam)
                                                                                 : GetWindowLongPtrA(dialog, GWLP_USERDATA));
    if (self == nullptr) {
        return FALSE;
    }
    if (message == WM_INITDIALOG) {
        self->OnInitDialog(dialog);
        return TRUE;
    }
    if (message != WM_COMMAND) {
        return FALSE;
    }
    switch (LOWORD(wParam)) {
        case IDOK: self->OnOk(); return TRUE;
        case IDCANCEL: EndDialog(dialog, 0); return TRUE;
        default: return FALSE;
    }
}

void DisplayRangesDialog::OnInitDialog(HWND dialog) {
    SetWindowLongPtrA(dialog, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    hDlg = dialog;
    char text[kTextSize] = "";
    LoadStringA(InstanceOf(dialog), IDS_RANGES_TITLE, text, kTextSize);
    SetWindowTextA(dialog, text);
    for (const Label& label : kLabels) {
        LoadStringA(InstanceOf(dialog), label.stringId, text, kTextSize);
        SetDlgItemTextA(dialog, label.id, text);
    }
    for (const Field& field : kFields) {
        SendMessageA(GetDlgItem(dialog, field.id), EM_LIMITTEXT, field.digits, 0);
        SetDlgItemInt(dialog, field.id, static_cast<UINT>(ranges.*field.number), FALSE);
    }
}

// An empty field reads as 0.
int DisplayRangesDialog::Number(int id) const {
    return static_cast<int>(GetDlgItemInt(hDlg, id, nullptr, FALSE));
}

bool DisplayRangesDialog::IsProper(const Pair& pair, int highest) const {
    const int from = Number(pair.from);
    const int to = Number(pair.to);
    return from >= 1 && from <= to && to <= highest;
}

// Nothing of this kind.
bool DisplayRangesDialog::IsOff(const Pair& pair) const {
    return Number(pair.from) == 0 && Number(pair.to) == 0;
}

void DisplayRangesDialog::OnOk() {
    constexpr Pair kAlbumPair = {IDC_ALBUM_FROM, IDC_ALBUM_TO};
    constexpr Pair kDiscPair = {IDC_DISC_FROM, IDC_DISC_TO};
    constexpr Pair kTrackPair = {IDC_TRACK_FROM, IDC_TRACK_TO};
    // Either kind of group may be left out, but not both.
    if (!IsProper(kAlbumPair, kAlbums) && !IsOff(kAlbumPair)) {
        Refuse(kAlbumPair);
    } else if (!IsProper(kDiscPair, kDiscs) && (!IsOff(kDiscPair) || IsOff(kAlbumPair))) {
        Refuse(kDiscPair);
    } else if (!IsProper(kTrackPair, kTracks)) {
        Refuse(kTrackPair);
    } else {
        for (const Field& field : kFields) {
            ranges.*field.number = Number(field.id);
        }
        EndDialog(hDlg, 1);
    }
}

void DisplayRangesDialog::Refuse(const Pair& pair) const {
    char text[kTextSize] = "";
    char caption[kCaptionSize] = "";
    LoadStringA(InstanceOf(hDlg), IDS_ERROR_RANGE, text, kTextSize);
    LoadStringA(InstanceOf(hDlg), IDS_ERROR_CAPTION, caption, kCaptionSize);
    MessageBoxA(hDlg, text, caption, MB_ICONINFORMATION);
    const int from = Number(pair.from);
    const int wrong = from > 0 && from < Number(pair.to) ? pair.to : pair.from;
    HWND field = GetDlgItem(hDlg, wrong);
    SetFocus(field);
    SendMessageA(field, EM_SETSEL, 0, -1);
}

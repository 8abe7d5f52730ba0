// The labels of message box buttons, which a file may replace.
//
// Interface thread.
#pragma once

#include <cstddef>
#include <string>

constexpr size_t uiMessageLabelCount = 7;

// The label by its place in uiMessage::Buttons, which is below the count. The file is read at the first call.
const std::string& uiMessageLabel(size_t index);

// Names the file, empty for none. The next label is read from it.
void uiMessageLabelFile(const std::u16string& path);

// Which device stands for COM1 to COM8.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kernel {

// 1 to 8 for "COM1" to "COM8" in any case of letters, else 0.
int PortNumber(std::string_view name);

// The device file of a port, 1 to 8, or an empty string if there is none. The user's own link comes first, and a link that
// leads nowhere is not replaced by another device. Whether the file exists and is a serial line shows when it is opened.
std::string PortDevice(int number);

// The USB serial adapters in a device folder, by number, those named ttyUSB before those named ttyACM.
std::vector<std::string> UsbPorts(const std::string& folder);

}  // namespace kernel

// The serial ports that are there at the moment of construction, as a person chooses among them.
#pragma once

#include <string>
#include <vector>

struct serialPortInfo {
    std::string port;          // the short name, for serialPort::SetPortName
    std::string description;   // what the device says of itself
    std::string friendlyName;  // what the system calls it
};

// Sorted by the bytes of `port`, so COM10 stands before COM2. No text is empty. A port that two classes of
// devices report stands twice. Building it may take some tens of milliseconds.
class serialPortList : public std::vector<serialPortInfo>
{
public:
    serialPortList();
};

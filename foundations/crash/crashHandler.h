// The crash report: a static object that is made first and destroyed last.
#pragma once

// The program's version as reports tell it, UTF-8; empty when none was given.
extern char AppVersion[64];

// Whether exceptions that other parts of the process could have handled are reported too. Nobody sets it but
// a developer.
extern bool ReportAll;

// From its construction to its destruction each crash of the process leaves a file with what a developer
// needs to find its cause in the user's documents folder, and a message says where it is. With a debugger
// attached crashes are left to it. An exception that nobody catches is reported in both cases. One object in
// a program.
class crashHandler
{
public:
    // `version` may be null.
    explicit crashHandler(const char* version);
    ~crashHandler();
    crashHandler(const crashHandler&) = delete;
    crashHandler& operator=(const crashHandler&) = delete;

private:
    bool Watching = false;
};

// The file of the settings' store, and how it changes: under a lock, as a new file put in the old one's
// place. At every moment the name stands for the old content or the new one, whole.
#pragma once

#include "platform/linux/registryText.h"

#include <functional>
#include <optional>
#include <string>

// "registry" in the folder "skyreckoning" of the user's configuration; empty when the system tells of no such
// place.
std::string registryStorePath();

// The content as it is now; that of a file that does not exist is empty. Nothing when it cannot be read. Does
// not wait for writers.
std::optional<registryText> registryStoreRead();

// Lets `change` edit the content and stores the outcome, with no other writer in between. False when `change`
// says so, and when the content cannot be read or stored; the file is as before then.
bool registryStoreChange(const std::function<bool(registryText&)>& change);

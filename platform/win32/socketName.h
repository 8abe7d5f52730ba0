// Addresses in the system's form and in ours.
#pragma once

#include "platform/socket.h"

#include <winsock2.h>
#include <ws2tcpip.h>

// False when the system's address is of no family that we know.
bool socketFromSystem(const sockaddr_storage& system, socketAddress& address);

// The size of the system's address; 0 when ours is of no family that it knows.
int socketToSystem(const socketAddress& address, sockaddr_storage& system);

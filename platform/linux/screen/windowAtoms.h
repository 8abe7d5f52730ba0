// The names that programs, window manager and display server share.
#pragma once

#include <xcb/xcb.h>

enum windowAtom {
    atomProtocols,
    atomDeleteWindow,
    atomPing,
    atomWMState,
    atomChangeState,
    atomNetSupported,
    atomNetName,
    atomNetIconName,
    atomNetIcon,
    atomNetPid,
    atomNetType,
    atomNetTypeNormal,
    atomNetTypeDialog,
    atomNetTypeUtility,
    atomNetTypePopup,
    atomNetState,
    atomNetStateAbove,
    atomNetStateModal,
    atomNetStateMaximisedX,
    atomNetStateMaximisedY,
    atomNetStateSkipTaskbar,
    atomNetStateSkipPager,
    atomNetActive,
    atomNetUserTime,
    atomNetWorkArea,
    atomNetDesktop,
    atomNetFrameExtents,
    atomMotifHints,
    atomUtf8,
    atomClipboard,
    atomTargets,
    atomTimestamp,
    atomIncremental,
    atomTextPlain,
    atomTransfer,
    atomCount,
};

// False when the connection is gone.
bool windowAtomsIntern(xcb_connection_t* connection, xcb_atom_t (&atoms)[atomCount]);

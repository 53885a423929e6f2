#pragma once

#include <QByteArray>

namespace zelmor::simulation {

// What becomes of one request that reached a chamber. The default is the
// chamber's own answer, on time.
struct RequestFault
{
    enum Kind {
        None,  // the chamber's own answer
        Drop,  // no answer at all; the request doesn't reach the reader either
        Error, // the protocol's error answer instead of the chamber's
        Stray  // bytes that are no valid frame of the protocol
    };

    Kind kind = None;
    // Added to the time at which the answer would have gone out.
    int delayMs = 0;
    // Raw material of a stray answer; the chamber makes sure it is no frame.
    QByteArray strayBytes;
};

} // namespace zelmor::simulation

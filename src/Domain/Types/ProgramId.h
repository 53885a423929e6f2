#pragma once

#include <QMetaType>

namespace zelmor::domain::types {

// Row id of table "program"; 0 means a program not stored yet.
class ProgramId
{
public:
    ProgramId(int id = 0);
    ProgramId(const ProgramId& other) = default;
    ProgramId& operator=(const ProgramId& other) = default;
    ProgramId& operator=(int id);

    bool operator==(const ProgramId& other) const;
    bool operator!=(const ProgramId& other) const;
    // Spelled out so that comparing with a plain number isn't ambiguous.
    bool operator==(int other) const;
    bool operator!=(int other) const;

    operator int() const;

    int id;
};

} // namespace zelmor::domain::types

// The payload of a sub-program step travels in a QVariant.
Q_DECLARE_METATYPE(zelmor::domain::types::ProgramId)

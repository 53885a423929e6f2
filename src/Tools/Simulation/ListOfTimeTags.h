#pragma once

#include <QList>
#include <QSharedPointer>
#include <QVariant>

namespace zelmor::simulation {

class XmlTimeTag;

// The time tags of a value file in file order.
class ListOfTimeTags : public QList<QSharedPointer<XmlTimeTag>>
{
public:
    // The value of the address at the given second of the script: the last
    // valid value among the tags up to the first tag that lies later, or
    // 0.0f when none of them names the address.
    QVariant read(int address, long long seconds) const;
};

} // namespace zelmor::simulation

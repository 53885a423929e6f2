#pragma once

#include <QByteArray>
#include <QMetaType>

namespace zelmor::domain::types {

// A user's answer to one security question, as hash and salt; the stores only
// move them.
class SecurityQuestionAnswer
{
public:
    // Question 0, empty hash and salt.
    SecurityQuestionAnswer();
    SecurityQuestionAnswer(int questionId, const QByteArray& answerHash, const QByteArray& answerSalt);

    int questionId;
    QByteArray answerHash;
    QByteArray answerSalt;
};

bool operator==(const SecurityQuestionAnswer& left, const SecurityQuestionAnswer& right);
bool operator!=(const SecurityQuestionAnswer& left, const SecurityQuestionAnswer& right);

} // namespace zelmor::domain::types

Q_DECLARE_METATYPE(zelmor::domain::types::SecurityQuestionAnswer)

#include "Domain/Types/SecurityQuestionAnswer.h"

namespace zelmor::domain::types {

SecurityQuestionAnswer::SecurityQuestionAnswer()
    : SecurityQuestionAnswer(0, QByteArray(), QByteArray())
{
}

SecurityQuestionAnswer::SecurityQuestionAnswer(int questionId, const QByteArray& answerHash,
                                               const QByteArray& answerSalt)
    : questionId(questionId)
    , answerHash(answerHash)
    , answerSalt(answerSalt)
{
}

bool operator==(const SecurityQuestionAnswer& left, const SecurityQuestionAnswer& right)
{
    return left.questionId == right.questionId && left.answerHash == right.answerHash
           && left.answerSalt == right.answerSalt;
}

bool operator!=(const SecurityQuestionAnswer& left, const SecurityQuestionAnswer& right)
{
    return !(left == right);
}

} // namespace zelmor::domain::types

#pragma once

#include <QTranslator>

namespace zelmor::testsupport {

// Installed while the object lives, it answers every text with its context in
// front, "[Context] text", so that a test sees that a text went through the
// framework's translation and in which context. Needs a QCoreApplication.
//
//     MarkingTranslator marking;
//     QCOMPARE(type.toString(), QStringLiteral("[AlarmType] Programm-Ereignis"));
class MarkingTranslator : public QTranslator
{
public:
    MarkingTranslator();
    ~MarkingTranslator() override;

    bool isEmpty() const override;
    QString translate(const char* context, const char* sourceText, const char* disambiguation = nullptr,
                      int n = -1) const override;
};

} // namespace zelmor::testsupport

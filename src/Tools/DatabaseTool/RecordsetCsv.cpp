#include "Tools/DatabaseTool/RecordsetCsv.h"

#include "Domain/Types/Recordset.h"

#include <QStringList>

#include <cmath>

namespace zelmor::tools::databasetool {

using zelmor::domain::types::ChamberSignal;
using zelmor::domain::types::Recordset;
using zelmor::domain::types::SignalValuePair;
using zelmor::domain::types::Unit;

namespace {

// Nine significant digits tell every float apart.
constexpr int floatDigits = 9;
constexpr int lowestPlainExponent = -7;
constexpr int highestPlainExponent = 15;

} // namespace

RecordsetCsv::RecordsetCsv(const QMap<int, ChamberSignal>& chamberSignals)
    : signals_(chamberSignals)
{
}

QString RecordsetCsv::field(const QString& text)
{
    if (!text.contains(QLatin1Char(',')) && !text.contains(QLatin1Char('"')) && !text.contains(QLatin1Char('\n'))
        && !text.contains(QLatin1Char('\r')))
        return text;
    QString quoted = text;
    quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

QString RecordsetCsv::number(float value)
{
    int digits = 1;
    while (digits < floatDigits && QString::number(double(value), 'g', digits).toFloat() != value)
        ++digits;
    // Without an exponent where a spreadsheet shows the number plainly anyway: 1500, not 1.5e+03.
    // The exponent of the rounded digits, not of the float: 1e-5 as a float lies just below 0.00001.
    const QString scientific = QString::number(double(value), 'e', digits - 1);
    const int exponent = scientific.mid(scientific.indexOf(QLatin1Char('e')) + 1).toInt();
    if (!std::isfinite(value) || exponent < lowestPlainExponent || exponent > highestPlainExponent)
        return QString::number(double(value), 'g', digits);
    return QString::number(double(value), 'f', qMax(0, digits - 1 - exponent));
}

QString RecordsetCsv::header() const
{
    QStringList fields{QStringLiteral("time")};
    for (const ChamberSignal& signal : signals_) {
        const QString unit = Unit::toString(signal.unit);
        fields.append(
            field(unit.isEmpty() ? signal.name : signal.name + QStringLiteral(" [") + unit + QLatin1Char(']')));
    }
    return fields.join(QLatin1Char(',')) + QLatin1Char('\n');
}

QString RecordsetCsv::row(const Recordset& recordset) const
{
    const QDateTime time = recordset.time.toOffsetFromUtc(recordset.time.offsetFromUtc());
    QStringList fields{time.toString(Qt::ISODateWithMs)};
    for (auto it = signals_.cbegin(); it != signals_.cend(); ++it) {
        QString text;
        for (const SignalValuePair& pair : recordset.values) {
            if (int(pair.signalId) != it.key() || !pair.hasValue())
                continue;
            text = it->isDigitalSignal() ? (pair.value.getValue().toBool() ? QStringLiteral("1") : QStringLiteral("0"))
                                         : number(pair.getValueInUnit(it->unit));
            break;
        }
        fields.append(text);
    }
    return fields.join(QLatin1Char(',')) + QLatin1Char('\n');
}

} // namespace zelmor::tools::databasetool

#pragma once

#include "Base/Connection/DatabaseConnection/DatabaseSchema.h"
#include "Base/Connection/DatabaseConnection/SqlQuery.h"
#include "Domain/Api/IAccessDatabaseConnection.h"
#include "Domain/Api/IAlarmDatabaseConnection.h"
#include "Domain/Api/ICameraDatabaseConnection.h"
#include "Domain/Api/IChamberDatabaseConnection.h"
#include "Domain/Api/IConfigurationDatabaseConnection.h"
#include "Domain/Api/IProgramDatabaseConnection.h"
#include "Domain/Api/IProtocolDatabaseConnection.h"
#include "Domain/Api/IRecordingDatabaseConnection.h"
#include "Domain/Api/IRecordsetDatabaseConnection.h"
#include "Domain/Api/IRoomDatabaseConnection.h"
#include "Domain/Api/ISettingsDatabaseConnection.h"
#include "Domain/Api/IUserDatabaseConnection.h"
#include "Domain/Types/DatabaseConnectionError.h"

#include <QList>
#include <QLoggingCategory>
#include <QObject>
#include <QSharedPointer>
#include <QString>

namespace zelmor::domain::api {
class ISqlConnection;
} // namespace zelmor::domain::api

namespace zelmor::base::connection::databaseconnection {

Q_DECLARE_LOGGING_CATEGORY(DATABASECONNECTION)

class SqlAccessDatabaseConnection;
class SqlAlarmDatabaseConnection;
class SqlCameraDatabaseConnection;
class SqlChamberDatabaseConnection;
class SqlConfigurationDatabaseConnection;
class SqlProgramDatabaseConnection;
class SqlProtocolDatabaseConnection;
class SqlRecordingDatabaseConnection;
class SqlRecordsetDatabaseConnection;
class SqlRoomDatabaseConnection;
class SqlSettingsDatabaseConnection;
class SqlUserDatabaseConnection;

// The one object through which the system reaches its persistent data: it owns
// the stores, wires them to the two databases, checks the schema version and
// creates the application tables. The names of all tables and columns come with
// DatabaseSchema. Each store's interface is implemented by passing every call
// on to the store.
//
// Neither database is owned. setDependencies() must come first; initialize()
// follows before any store is used. The simulator only sets the dependencies
// and reads the catalogue.
class DatabaseConnection : public QObject,
                           public DatabaseSchema,
                           public zelmor::domain::api::IAccessDatabaseConnection,
                           public zelmor::domain::api::IAlarmDatabaseConnection,
                           public zelmor::domain::api::ICameraDatabaseConnection,
                           public zelmor::domain::api::IChamberDatabaseConnection,
                           public zelmor::domain::api::IConfigurationDatabaseConnection,
                           public zelmor::domain::api::IProgramDatabaseConnection,
                           public zelmor::domain::api::IProtocolDatabaseConnection,
                           public zelmor::domain::api::IRecordingDatabaseConnection,
                           public zelmor::domain::api::IRecordsetDatabaseConnection,
                           public zelmor::domain::api::IRoomDatabaseConnection,
                           public zelmor::domain::api::ISettingsDatabaseConnection,
                           public zelmor::domain::api::IUserDatabaseConnection
{
    Q_OBJECT

public:
    // The flag is kept for the stores that read user levels: it merges them on reading.
    explicit DatabaseConnection(bool mergeUserLevels, QObject* parent = nullptr);
    ~DatabaseConnection() override;

    // Stores both pointers, then hands them to the stores. False when either is
    // null, or when a store refuses its dependencies.
    bool setDependencies(zelmor::domain::api::ISqlConnection* applicationDatabase,
                         zelmor::domain::api::ISqlConnection* configurationDatabase);
    bool areDependenciesSet() const;
    // Checks the application database's version, creates its missing tables and
    // initialises the stores. On false, isDatabaseVersionWrong() tells a too old
    // database from a missing table or a failed creation.
    bool initialize();
    bool isDatabaseVersionWrong() const;

    // Each creates its table on the application database unless it exists,
    // whatever columns it has, after the tables its foreign keys reference.
    // True when the table is there afterwards.
    bool createTableChamber();
    bool createTableGlobalSettings();
    bool createTableMetaRecordingHasRecordings();
    bool createTableProtocolEntry();
    bool createTableRecording();
    bool createTableRecordset();
    bool createTableRecordsetComment();
    bool createTableToleranceRange();
    bool createTableRoom();
    bool createTableRoomChamberPosition();
    bool createTableUser();
    bool createTableUserHasChamberSignalVisibilityPreference();
    bool createTableUserPreferences();

    // IAccessDatabaseConnection
    zelmor::domain::types::UserLevel
    getRequiredUserLevel(const zelmor::domain::types::ActivityId& activity) const override;
    QList<zelmor::domain::types::ActivityId>
    getGrantedActivities(zelmor::domain::types::UserLevel level) const override;

    // IAlarmDatabaseConnection
    // All alarms, each with the name of its chamber.
    QList<zelmor::domain::types::Alarm> getAllAlarms() const override;
    int getSignalAlarmDelay(const zelmor::domain::types::AlarmId& alarm, const zelmor::domain::types::SignalId& signal,
                            bool second) const override;
    bool addAlarm(zelmor::domain::types::Alarm& alarm) override;
    bool updateAlarm(const zelmor::domain::types::Alarm& alarm) override;
    bool deleteAlarm(const zelmor::domain::types::AlarmId& id) override;
    QList<zelmor::domain::types::Alarm> getAlarms(const zelmor::domain::types::ChamberId& chamber) const override;
    int countAlarms(const zelmor::domain::types::ChamberId& chamber) const override;

    // ICameraDatabaseConnection
    QList<zelmor::domain::types::Camera> getCameras(const zelmor::domain::types::RecordingId& recording) const override;
    bool addCamera(zelmor::domain::types::Camera& camera) override;
    bool updateCamera(const zelmor::domain::types::Camera& camera) override;
    bool deleteCamera(const zelmor::domain::types::CameraId& id) override;

    // IChamberDatabaseConnection
    bool addChamber(zelmor::domain::types::ChamberData& chamber) override;
    QList<zelmor::domain::types::ChamberData> getAllChamberData(bool withRoomPosition) const override;
    zelmor::domain::types::ChamberData getChamberData(const zelmor::domain::types::ChamberId& id,
                                                      bool withRoomPosition) const override;
    QVariant getChamberProperty(const zelmor::domain::types::ChamberId& id,
                                const zelmor::domain::api::ChamberProperty& property) const override;
    QMap<int, zelmor::domain::types::ChamberSignal>
    getChamberSignals(const zelmor::domain::types::ChamberId& id) const override;
    bool updateChamber(const zelmor::domain::types::ChamberData& chamber, bool withSubscription) override;
    bool setChamberProperty(const zelmor::domain::types::ChamberData& chamber,
                            const zelmor::domain::api::ChamberProperty& property) override;
    bool setChamberProperty(const zelmor::domain::types::ChamberId& id,
                            const zelmor::domain::api::ChamberProperty& property, const QVariant& value) override;
    bool setChamberCustomSignalNames(zelmor::domain::types::ChamberId id,
                                     const QMap<zelmor::domain::types::SignalId, QString>& names) override;
    QMap<zelmor::domain::types::SignalId, QString>
    getChamberCustomSignalNames(zelmor::domain::types::ChamberId id) override;
    bool deleteChamber(const zelmor::domain::types::ChamberId& id) override;
    bool archiveChamber(const zelmor::domain::types::ChamberId& id) override;
    bool restoreChamber(const zelmor::domain::types::ChamberId& id) override;
    QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ToleranceRange>
    getToleranceRanges(const QDateTime& time, const zelmor::domain::types::ChamberId& chamber,
                       const QMap<int, zelmor::domain::types::ChamberSignal>& chamberSignals) override;
    QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ToleranceRange>
    getToleranceRanges(const QDateTime& time, const zelmor::domain::types::RecordingId& recording,
                       const QMap<int, zelmor::domain::types::ChamberSignal>& chamberSignals) override;
    zelmor::domain::types::ToleranceRangeHistory
    getToleranceRangeHistory(const zelmor::domain::types::RecordingId& recording,
                             const QMap<int, zelmor::domain::types::ChamberSignal>& chamberSignals) override;
    zelmor::domain::types::ToleranceRange getToleranceRange(const QDateTime& time,
                                                            const zelmor::domain::types::ChamberId& chamber,
                                                            const zelmor::domain::types::SignalId& signal) override;
    bool setToleranceRange(const QDateTime& time, const zelmor::domain::types::ChamberId& chamber,
                           const zelmor::domain::types::SignalId& signal,
                           const zelmor::domain::types::ToleranceRange& range) override;
    bool isChamberSubscribed(const zelmor::domain::types::ChamberId& id) const override;
    QList<zelmor::domain::types::SignalId>
    getSubscribedChamberSignals(const zelmor::domain::types::ChamberId& id) const override;
    bool isAnyChamberSignalSubscribed(const zelmor::domain::types::ChamberId& id,
                                      const QList<zelmor::domain::types::SignalId>& signalIds) const override;
    bool isChamberSignalSubscribed(const zelmor::domain::types::ChamberId& id,
                                   const zelmor::domain::types::SignalId& signal) const override;
    bool subscribeChamber(const zelmor::domain::types::ChamberId& id) override;
    bool unsubscribeChamber(const zelmor::domain::types::ChamberId& id) override;
    bool bulkSubscribeChambers(const QList<zelmor::domain::types::ChamberId>& ids) override;
    bool bulkUnsubscribeChambers(const QList<zelmor::domain::types::ChamberId>& ids) override;
    bool subscribeChamberSignal(const zelmor::domain::types::ChamberId& id,
                                const zelmor::domain::types::SignalId& signal) override;
    bool unsubscribeChamberSignal(const zelmor::domain::types::ChamberId& id,
                                  const zelmor::domain::types::SignalId& signal) override;
    QMap<zelmor::domain::types::SignalId, int>
    getAllChamberSignalDelaysInSeconds(const zelmor::domain::types::ChamberId& id, bool second) const override;
    int getChamberSignalDelayInSeconds(const zelmor::domain::types::ChamberId& id,
                                       const zelmor::domain::types::SignalId& signal, bool second) const override;
    bool hasChamberSignalDelay(const zelmor::domain::types::ChamberId& id,
                               const zelmor::domain::types::SignalId& signal, bool second) const override;
    bool setChamberSignalDelay(const zelmor::domain::types::ChamberId& id,
                               const zelmor::domain::types::SignalId& signal, bool second, int seconds) override;

    // IConfigurationDatabaseConnection
    QList<zelmor::domain::types::ChamberTypeData> getAllChamberTypeData(bool withSignals) const override;
    QList<zelmor::domain::types::ChamberTypeData> getAllProgrammableChamberTypeData() const override;
    zelmor::domain::types::ChamberTypeData getChamberTypeData(const zelmor::domain::types::ChamberTypeId& id,
                                                              bool withSignals) const override;
    QMap<int, zelmor::domain::types::ChamberSignal>
    getChamberSignals(const zelmor::domain::types::ChamberTypeId& id) const override;
    QList<std::pair<zelmor::domain::types::ChamberSignal, zelmor::domain::types::DefaultToleranceRange>>
    getTimeProgrammableChamberSignals(const zelmor::domain::types::ChamberTypeId& id) const override;
    QMap<int, zelmor::domain::types::ChamberSignal>
    getSetpointChamberSignals(const zelmor::domain::types::ChamberTypeId& id) const override;
    QMap<int, zelmor::domain::types::ChamberSignal>
    getChamberSignals(QList<zelmor::domain::types::SignalId> ids) const override;
    QSharedPointer<zelmor::domain::types::ChamberSignal>
    getChamberSignal(const zelmor::domain::types::SignalId& id) const override;
    QMap<zelmor::domain::types::SignalId, zelmor::domain::types::ChamberSignal>
    getMatchingSignals(const zelmor::domain::types::ChamberTypeId& source,
                       const zelmor::domain::types::ChamberTypeId& destination) const override;
    QList<zelmor::domain::types::ChamberSignal>
    getDataloggerChamberSignal(const zelmor::domain::types::ChamberTypeId& id) const override;
    zelmor::domain::types::DefaultToleranceRange
    getDefaultToleranceRange(const zelmor::domain::types::ChamberTypeId& id,
                             const zelmor::domain::types::SignalId& signalId, bool isSetPoint) const override;
    int getChamberSignalDelay(const zelmor::domain::types::ChamberTypeId& id,
                              const zelmor::domain::types::SignalId& signalId, bool second) const override;
    zelmor::domain::types::Unit::UnitId getSignalUnitId(const zelmor::domain::types::SignalId& id) const override;

    // IProgramDatabaseConnection
    QList<zelmor::domain::types::ProgramData> getAllPrograms() const override;
    zelmor::domain::types::ProgramData getProgram(const zelmor::domain::types::ProgramId& id) const override;
    QString getProgramName(const zelmor::domain::types::ProgramId& id) const override;
    bool getProgramStateEdited(const zelmor::domain::types::ProgramId& id) const override;
    zelmor::domain::types::UserId getProgramUserId(const zelmor::domain::types::ProgramId& id) const override;
    zelmor::domain::types::ChamberTypeId
    getProgramChamberTypeId(const zelmor::domain::types::ProgramId& id) const override;
    zelmor::domain::types::ProgramData::Type getProgramType(const zelmor::domain::types::ProgramId& id) const override;
    bool exportProgram(const zelmor::domain::types::ProgramId& id, const QUrl& file) const override;
    zelmor::domain::types::ProgramId importProgram(const QUrl& file,
                                                   const zelmor::domain::types::UserId& user) override;
    bool addProgram(zelmor::domain::types::ProgramData& program) override;
    bool deleteProgram(const zelmor::domain::types::ProgramId& id) override;
    bool updateProgram(const zelmor::domain::types::ProgramData& program) override;
    bool updateProgramName(const zelmor::domain::types::ProgramId& id, QString name) override;
    zelmor::domain::types::ProgramId findProgramByName(const QString& name) const override;
    bool isProgramIdValid(const zelmor::domain::types::ProgramId& id) const override;
    bool hasSubPrograms(const zelmor::domain::types::ProgramId& id) const override;
    bool containsProgramStepRepetitions(const zelmor::domain::types::ProgramStepRepetition& repetition) const override;
    bool addProgramStep(zelmor::domain::types::ProgramStep& step) override;
    bool updateProgramSteps(const zelmor::domain::types::ProgramId& program,
                            QList<zelmor::domain::types::ProgramStep>& steps) override;
    QList<zelmor::domain::types::ProgramStep>
    getProgramSteps(const zelmor::domain::types::ProgramId& program) const override;
    bool addProgramStepRepetition(zelmor::domain::types::ProgramStepRepetition& repetition) override;
    bool updateProgramStepRepetitions(const zelmor::domain::types::ProgramId& program,
                                      QList<zelmor::domain::types::ProgramStepRepetition>& repetitions) override;
    bool deleteProgramStepRepetition(const zelmor::domain::types::ProgramStepRepetitionId& id) override;
    bool updateProgramStepRepetition(const zelmor::domain::types::ProgramStepRepetition& repetition) override;
    QList<zelmor::domain::types::ProgramStepRepetition>
    getProgramStepRepetitions(const zelmor::domain::types::ProgramId& program) const override;
    zelmor::domain::types::ProgramStepRepetition
    getProgramStepRepetition(const zelmor::domain::types::ProgramSectionId& startStep,
                             const zelmor::domain::types::ProgramSectionId& endStep) const override;
    QVariant getProgramProperty(const zelmor::domain::types::ProgramId& id,
                                zelmor::domain::api::ProgramProperty property) const override;
    bool updateProgramProperty(const zelmor::domain::types::ProgramId& id,
                               zelmor::domain::api::ProgramProperty property, const QVariant& value) override;
    bool addSection(zelmor::domain::types::ProgramSection& section) override;
    bool updateSection(zelmor::domain::types::ProgramSection& section) override;
    bool addSetpoints(const zelmor::domain::types::ProgramSectionId& section,
                      const QList<zelmor::domain::types::SignalValuePair>& setpoints) override;
    bool updateProgramStep(const zelmor::domain::types::ProgramStep& step) override;
    bool deleteProgramStep(const zelmor::domain::types::ProgramStepId& id) override;
    bool deleteProgramSteps(const zelmor::domain::types::ProgramId& program) override;
    bool deleteUnusedProgramSteps(const zelmor::domain::types::ProgramId& program,
                                  const QList<zelmor::domain::types::ProgramStep>& steps) override;
    bool
    deleteUnusedProgramStepRepetitions(const zelmor::domain::types::ProgramId& program,
                                       const QList<zelmor::domain::types::ProgramStepRepetition>& repetitions) override;
    bool deleteProgramSection(const zelmor::domain::types::ProgramSectionId& id) override;
    bool deleteProgramSections(const zelmor::domain::types::ProgramId& program) override;
    bool deleteProgramSectionSetpoints(const zelmor::domain::types::ProgramSectionId& section) override;
    bool deleteProgramSetpoints(const zelmor::domain::types::ProgramId& program) override;
    zelmor::domain::types::ProgramSectionId
    getProgramSectionId(const zelmor::domain::types::ProgramStepId& step) const override;
    QVariant getProgramStepPropertyValue(const zelmor::domain::types::ProgramStepId& step,
                                         zelmor::domain::api::ProgramStepProperty property) const override;
    zelmor::domain::types::ProgramSection
    getProgramSection(const zelmor::domain::types::ProgramSectionId& id) const override;
    QList<zelmor::domain::types::SignalValuePair>
    getProgramSectionSetpoints(const zelmor::domain::types::ProgramSectionId& section) const override;

    // IProtocolDatabaseConnection
    bool addProtocolEntry(const zelmor::domain::types::ProtocolEntry& entry) override;
    QList<zelmor::domain::types::ProtocolEntry>
    getProtocolEntries(const zelmor::domain::types::TimeSpan& span,
                       zelmor::domain::types::UserLevel level) const override;
    QList<zelmor::domain::types::ProtocolEntry>
    getProtocolEntries(const zelmor::domain::types::TimeSpan& span,
                       const zelmor::domain::types::UserId& user) const override;
    bool hasProtocolEntries(const zelmor::domain::types::UserId& user) const override;

    // IRecordingDatabaseConnection
    bool addRecording(zelmor::domain::types::RecordingData& recording) override;
    QList<QSharedPointer<zelmor::domain::types::RecordingData>> getAllRecordingData() const override;
    QSharedPointer<zelmor::domain::types::RecordingData>
    getRecordingData(const zelmor::domain::types::RecordingId& id) const override;
    zelmor::domain::types::RecordingId
    getActiveRecording(const zelmor::domain::types::ChamberId& chamber) const override;
    QVariant getRecordingProperty(const zelmor::domain::types::RecordingId& id,
                                  const zelmor::domain::api::RecordingProperty& property) const override;
    bool hasRecordings(const zelmor::domain::types::ChamberId& chamber) const override;
    bool setRecordingProperty(const zelmor::domain::types::RecordingData& recording,
                              const zelmor::domain::api::RecordingProperty& property) override;
    bool setRecordingProperty(const zelmor::domain::types::RecordingId& id,
                              const zelmor::domain::api::RecordingProperty& property, const QVariant& value) override;
    bool updateRecordingProperties(const zelmor::domain::types::RecordingData& recording) override;
    bool deleteRecording(const zelmor::domain::types::RecordingId& id) override;
    bool archiveRecording(const zelmor::domain::types::RecordingId& id) override;
    bool restoreRecording(const zelmor::domain::types::RecordingId& id) override;
    QList<zelmor::domain::types::RecordingId>
    getMetaRecordingSubRecordings(const zelmor::domain::types::RecordingId& meta) const override;
    bool setMetaRecordingSubRecordings(const zelmor::domain::types::RecordingId& meta,
                                       QList<zelmor::domain::types::RecordingId> recordings) override;
    bool deleteMetaRecordingSubRecordings(const zelmor::domain::types::RecordingId& meta) override;

    // IRecordsetDatabaseConnection
    bool addRecordset(zelmor::domain::types::Recordset& recordset) override;
    bool addRecordsetComment(const zelmor::domain::types::RecordsetComment& comment) override;
    bool deleteRecordsetComment(const zelmor::domain::types::RecordsetId& id) override;
    bool deleteRecordset(const zelmor::domain::types::RecordsetId& id) override;
    bool deleteAllRecordsets(const zelmor::domain::types::RecordingId& recording) override;
    zelmor::domain::types::Recordset getRecordset(const zelmor::domain::types::RecordsetId& id) override;
    QList<zelmor::domain::types::Recordset> getLatestNRecordsets(const zelmor::domain::types::RecordingId& recording,
                                                                 int count, const QDateTime& before) override;
    QList<zelmor::domain::types::Recordset> getNRecordsets(const zelmor::domain::types::RecordingId& recording,
                                                           int count,
                                                           const zelmor::domain::types::RecordsetId& before) override;
    QList<zelmor::domain::types::Recordset> getRecordsets(const zelmor::domain::types::RecordingId& recording,
                                                          const zelmor::domain::types::TimeSpan& span,
                                                          long long maxCount) override;
    QList<zelmor::domain::types::Recordset> getRecordsets(const zelmor::domain::types::RecordingId& recording,
                                                          long long start, long long end, long long maxCount) override;
    zelmor::domain::types::RecordsetComment
    getRecordsetComment(const zelmor::domain::types::RecordsetId& id) const override;
    bool matchSignalRecordsetColumn(const zelmor::domain::types::RecordingId& recording,
                                    const QList<zelmor::domain::types::SignalId>& signalIds) override;
    QMap<int, zelmor::domain::types::ChamberSignal>
    getRecordingSignals(const zelmor::domain::types::RecordingId& recording) const override;
    bool addRecordsToQuery(QList<zelmor::domain::types::Recordset>& recordsets) const override;
    long long getRecordsetLenght(const zelmor::domain::types::RecordingId& recording) override;
    QList<zelmor::domain::types::Recordset>
    getRecordsetsWithImagePath(const zelmor::domain::types::RecordingId& recording,
                               const zelmor::domain::types::TimeSpan& span, long long maxCount) override;

    // IRoomDatabaseConnection
    QList<zelmor::domain::types::Room> getAllRooms() const override;
    QUrl getRoomImagePath(const zelmor::domain::types::RoomId& id) const override;
    bool addRoom(zelmor::domain::types::Room& room) override;
    bool updateRoom(const zelmor::domain::types::Room& room) override;
    bool deleteRoom(const zelmor::domain::types::RoomId& id) override;
    zelmor::domain::types::RoomPosition getRoomPosition(const zelmor::domain::types::ChamberId& chamber) const override;
    bool setRoomPosition(const zelmor::domain::types::ChamberId& chamber,
                         const zelmor::domain::types::RoomPosition& position) override;
    QList<zelmor::domain::types::ChamberId> getChambersInRoom(const zelmor::domain::types::RoomId& id) const override;

    // ISettingsDatabaseConnection
    QString getQuickRecordingNameTemplate() const override;
    int getQuickRecordingSecondsInterval() const override;
    bool isRecordingResumptionOnStartupEnabled() const override;
    bool isAccessControlActive() const override;
    bool areSecurityQuestionsActive() const override;
    int getPasswordValidityPeriod() const override;
    int getScreenLockTimeout() const override;
    zelmor::domain::types::SmtpConfiguration getSmtpConfiguration() const override;
    zelmor::domain::types::ReportConfiguration getReportConfiguration() const override;
    bool isAlarmRepetitionEnabled() const override;
    int getAlarmRepetitionIntervalInSeconds() const override;
    int getPreAlarmDelayInSeconds() const override;
    zelmor::domain::types::BackupScheduleConfiguration getBackupScheduleConfiguration() const override;
    zelmor::domain::types::BackupCleanupSettings getBackupCleanupSettings() const override;
    bool setQuickRecordingNameTemplate(const QString& nameTemplate) override;
    bool setQuickRecordingSecondsInterval(int seconds) override;
    bool setRecordingResumptionOnStartupEnabled(bool enabled) override;
    bool setAccessControlActive(bool active) override;
    bool setSecurityQuestionsActive(bool active) override;
    bool setPasswordValidityPeriod(int days) override;
    bool setScreenLockTimeout(int timeout) override;
    bool setSmtpConfiguration(const zelmor::domain::types::SmtpConfiguration& configuration) override;
    bool setReportConfiguration(const zelmor::domain::types::ReportConfiguration& configuration) override;
    bool setAlarmRepetitionEnabled(bool enabled) override;
    bool setAlarmRepetitionIntervalInSeconds(int seconds) override;
    bool setPreAlarmDelayInSeconds(int seconds) override;
    bool
    setBackupScheduleConfiguration(const zelmor::domain::types::BackupScheduleConfiguration& configuration) override;
    bool setBackupCleanupSettings(const zelmor::domain::types::BackupCleanupSettings& settings) override;
    int getAllowedNumberOfFailedLogins() const override;
    bool setAllowedNumberOfFailedLogins(int number) override;
    zelmor::domain::types::ZelmorNetworkConfiguration getZelmorNetworkConfiguration() const override;
    bool setZelmorNetworkConfiguration(const zelmor::domain::types::ZelmorNetworkConfiguration& configuration) override;
    int getZelmorNumConnectionAttempts() const override;
    bool setZelmorNumConnectionAttempts(int attempts) override;
    bool isZelmorConnectionActive() const override;
    bool setZelmorConnectionActive(bool active) override;
    zelmor::domain::types::SirenBoxNetworkConfiguration getSirenBoxNetworkConfiguration() const override;
    bool
    setSirenBoxNetworkConfiguration(const zelmor::domain::types::SirenBoxNetworkConfiguration& configuration) override;
    int getSirenBoxNumConnectionAttempts() const override;
    bool setSirenBoxNumConnectionAttempts(int attempts) override;
    bool isSirenBoxActive() const override;
    bool setSirenBoxActive(bool active) override;
    QStringList getRecipientMailAddresses() const override;
    bool isMailAddressInRecipients(const QString& address) const override;
    bool addMailAddressToRecipients(const QString& address) override;
    bool deleteMailAddressFromRecipients(const QString& address) override;

    // IUserDatabaseConnection
    QList<QSharedPointer<zelmor::domain::types::UserData>> getAllUserData() const override;
    QSharedPointer<zelmor::domain::types::UserData> getUserData(const zelmor::domain::types::UserId& id) const override;
    QSharedPointer<zelmor::domain::types::UserData> getUserDataByName(const QString& loginName) const override;
    QList<zelmor::domain::types::SecurityQuestionAnswer>
    getUserSecurityQuestionAnswers(const zelmor::domain::types::UserId& id) const override;
    QSharedPointer<zelmor::domain::types::UserPreferences>
    getUserPreferences(const zelmor::domain::types::UserId& id) const override;
    QStringList getAllUserNames() const override;
    QString getUserName(const zelmor::domain::types::UserId& id) const override;
    QList<zelmor::domain::types::ChamberSignal>
    getVisibleChamberSignals(const zelmor::domain::types::UserId& user,
                             const zelmor::domain::types::ChamberId& chamber) const override;
    bool setVisibleChamberSignals(const QList<zelmor::domain::types::SignalId>& signalIds,
                                  const zelmor::domain::types::UserId& user,
                                  const zelmor::domain::types::ChamberId& chamber) override;
    QVariant getUserPropertyValue(const zelmor::domain::types::UserId& id,
                                  zelmor::domain::api::UserProperty property) const override;
    QVariant getUserPreferencesPropertyValue(const zelmor::domain::types::UserId& id,
                                             zelmor::domain::api::UserPreferencesProperty property) const override;
    bool addUser(zelmor::domain::types::UserData& user) override;
    bool setUserSecurityQuestionAnswers(const zelmor::domain::types::UserId& id,
                                        const QList<zelmor::domain::types::SecurityQuestionAnswer>& answers) override;
    bool addUserPreferences(const zelmor::domain::types::UserId& id,
                            const zelmor::domain::types::UserPreferences& preferences) override;
    bool updateUserPreferences(const zelmor::domain::types::UserId& id,
                               const zelmor::domain::types::UserPreferences& preferences) override;
    bool updateUser(const zelmor::domain::types::UserData& user) override;
    bool setUserPropertyValue(const zelmor::domain::types::UserId& id, zelmor::domain::api::UserProperty property,
                              const QVariant& value) override;
    bool deleteUser(const zelmor::domain::types::UserId& id) override;
    bool showChamberSignal(const zelmor::domain::types::UserId& user, const zelmor::domain::types::ChamberId& chamber,
                           const zelmor::domain::types::SignalId& signalId) override;
    bool hideChamberSignal(const zelmor::domain::types::UserId& user, const zelmor::domain::types::ChamberId& chamber,
                           const zelmor::domain::types::SignalId& signalId) override;
    QMap<int, QString> getUserRecordingConfig(const zelmor::domain::types::UserId& user) override;
    bool setUserRecordingConfig(const zelmor::domain::types::UserId& user, int recording,
                                QString configuration) override;

signals:
    // Passes on the stores' errors with their number. Connected from construction on.
    void error(zelmor::domain::types::DatabaseConnectionError error) const override;

private:
    void connectSignals();
    bool createApplicationTables();
    bool initializeStores();

    bool createZelmorTable(const QString& table, const QList<SqlQuery::ColumnConfiguration>& columns,
                           const QList<SqlQuery::ForeignKeyConfiguration>& foreignKeys = {});
    bool createReferenceTable(const QString& table);
    bool executeZelmorCreateTableQuery(const SqlQuery& query, const QString& table);

    zelmor::domain::api::ISqlConnection* applicationDatabase = nullptr;
    zelmor::domain::api::ISqlConnection* configurationDatabase = nullptr;
    // The stores, without parents, in this order: access, alarm, camera,
    // chamber, configuration, program, protocol, recording, recordset, room,
    // settings, user. The others join in their places.
    QSharedPointer<SqlAccessDatabaseConnection> accessStore;
    QSharedPointer<SqlAlarmDatabaseConnection> alarmStore;
    QSharedPointer<SqlCameraDatabaseConnection> cameraStore;
    QSharedPointer<SqlChamberDatabaseConnection> chamberStore;
    QSharedPointer<SqlConfigurationDatabaseConnection> configurationStore;
    QSharedPointer<SqlProgramDatabaseConnection> programStore;
    QSharedPointer<SqlProtocolDatabaseConnection> protocolStore;
    QSharedPointer<SqlRecordingDatabaseConnection> recordingStore;
    QSharedPointer<SqlRecordsetDatabaseConnection> recordsetStore;
    QSharedPointer<SqlRoomDatabaseConnection> roomStore;
    QSharedPointer<SqlSettingsDatabaseConnection> settingsStore;
    QSharedPointer<SqlUserDatabaseConnection> userStore;
    bool mergeUserLevels;
    bool databaseVersionWrong = false;
};

} // namespace zelmor::base::connection::databaseconnection

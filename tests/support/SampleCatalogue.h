#pragma once

#include <QString>

namespace zelmor::testsupport {

class TestDatabase;

// The shipped sample catalogue (database/schema.sql and sample-data.sql of the
// source tree), made afresh as an encrypted file with the project key inside
// the given test database folder, so that a test never reads a stale build
// product. Returns the path, or an empty text (database.lastError() says why).
QString createSampleCatalogue(TestDatabase& database, const QString& fileName = QStringLiteral("catalogue.sqlite3"));

// The shipped schema with the given rows instead of the sample data.
QString createCatalogue(TestDatabase& database, const QString& fileName, const QString& rows);

// An application database as delivered (database/application-schema.sql of the
// source tree), encrypted with the project key, with the given rows added.
QString createApplicationDatabase(TestDatabase& database, const QString& fileName, const QString& rows = QString());

} // namespace zelmor::testsupport

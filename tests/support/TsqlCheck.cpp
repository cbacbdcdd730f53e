#include "TsqlCheck.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QStandardPaths>
#include <algorithm>
#include <mutex>
#include <string>

namespace qz2test {

namespace {

std::mutex g_mutex;
QStringList g_statements;

void remember(const QString& sql) {
    const std::lock_guard lock(g_mutex);
    if (!g_statements.contains(sql)) g_statements << sql;
}

// Both texts one above the other, with a caret under the first character that differs
// (past the end of the shorter one when one is a prefix of the other).
std::string describeDifference(const QString& actual, const QString& expected) {
    qsizetype at = 0;
    const qsizetype common = std::min(actual.size(), expected.size());
    while (at < common && actual[at] == expected[at]) ++at;
    std::string out = "T-SQL text differs at character " + std::to_string(at) + " (lengths " +
                      std::to_string(actual.size()) + " and " + std::to_string(expected.size()) +
                      ")\n";
    out += "  actual:   \"" + actual.toStdString() + "\"\n";
    out += "  expected: \"" + expected.toStdString() + "\"\n";
    // The caret lines up with the texts above when they are plain ASCII, which ours are.
    out += "             " + std::string(static_cast<size_t>(at), ' ') + "^\n";
    return out;
}

QString findNode() {
    for (const char* name : {"node", "nodejs"}) {
        const QString found = QStandardPaths::findExecutable(QString::fromLatin1(name));
        if (!found.isEmpty()) return found;
    }
    return {};
}

// Parses every pinned statement of this program once, after the last test.
class TsqlParseEnvironment : public ::testing::Environment {
public:
    void TearDown() override {
        const QStringList statements = rememberedTsql();
        if (statements.isEmpty()) return;
        const TsqlCheckResult result = runTsqlCheck(statements);
        if (!result.ok)
            ADD_FAILURE() << "The T-SQL parser rejects pinned statements (or cannot run):\n"
                          << result.output.toStdString();
    }
};

// Registered before main runs; GoogleTest takes ownership of the environment.
const struct Registrar {
    Registrar() { ::testing::AddGlobalTestEnvironment(new TsqlParseEnvironment); }
} g_registrar;

}  // namespace

void expectTsql(const QString& actual, const QString& expected, std::source_location where) {
    remember(actual);
    if (actual != expected)
        ADD_FAILURE_AT(where.file_name(), static_cast<int>(where.line()))
            << describeDifference(actual, expected);
}

QStringList rememberedTsql() {
    const std::lock_guard lock(g_mutex);
    return g_statements;
}

TsqlCheckResult runTsqlCheck(const QStringList& statements) {
    const QString script = QStringLiteral(QZ2_SOURCE_DIR "/tools/sqlcheck/check.js");
    if (!QFileInfo::exists(script))
        return {false, QStringLiteral("The checker is missing: ") + script};
    const QString node = findNode();
    if (node.isEmpty())
        return {false, QStringLiteral("node is not installed; scripts/install-deps installs it")};

    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(node, {script});
    if (!process.waitForStarted(30000))
        return {false, QStringLiteral("node could not be started: ") + process.errorString()};
    process.write(
        QJsonDocument(QJsonArray::fromStringList(statements)).toJson(QJsonDocument::Compact));
    process.closeWriteChannel();
    if (!process.waitForFinished(180000)) {
        process.kill();
        process.waitForFinished(5000);
        return {false, QStringLiteral("the checker did not finish in time")};
    }
    const QString output = QString::fromUtf8(process.readAll());
    if (process.exitStatus() != QProcess::NormalExit)
        return {false, QStringLiteral("the checker crashed\n") + output};
    if (process.exitCode() != 0)
        return {false,
                QStringLiteral("check.js exited with %1\n").arg(process.exitCode()) + output};
    return {true, output};
}

}  // namespace qz2test

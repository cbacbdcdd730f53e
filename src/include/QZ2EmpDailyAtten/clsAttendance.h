#pragma once
// The attendance module's one creatable class. A host sets the caller context by property
// name and calls Show(), which runs the attendance register modally and returns when the
// clerk closes it. Show() needs a QApplication made by the host.

#include <QDate>
#include <QObject>
#include <QSqlDatabase>
#include <QString>

class clsAttendance : public QObject {
    Q_OBJECT
    Q_PROPERTY(QSqlDatabase adocon READ adocon WRITE setAdocon)
    Q_PROPERTY(QString MsgboxTitle READ MsgboxTitle WRITE setMsgboxTitle)
    Q_PROPERTY(QDate ProcessDate READ ProcessDate WRITE setProcessDate)
    Q_PROPERTY(qint16 intUserID READ intUserID WRITE setIntUserID)
    Q_PROPERTY(qint16 intCompanyID READ intCompanyID WRITE setIntCompanyID)

public:
    explicit clsAttendance(QObject* parent = nullptr);
    ~clsAttendance() override;

    // The host's open connection, shared, never copied into a new connection. Reading it
    // before it was set gives a new, unopened connection handle.
    QSqlDatabase adocon();
    void setAdocon(const QSqlDatabase& connection);
    QString MsgboxTitle() const { return m_title; }
    void setMsgboxTitle(const QString& title) { m_title = title; }
    QDate ProcessDate() const { return m_processDate; }
    void setProcessDate(const QDate& date) { m_processDate = date; }
    qint16 intUserID() const { return m_userId; }
    void setIntUserID(qint16 id) { m_userId = id; }
    qint16 intCompanyID() const { return m_companyId; }
    void setIntCompanyID(qint16 id) { m_companyId = id; }

    // Copies the context into the session and shows the register modally.
    Q_INVOKABLE void Show();

private:
    QSqlDatabase m_adocon;
    bool m_adoconSet = false;
    QString m_title;
    QDate m_processDate;
    qint16 m_userId = 0;
    qint16 m_companyId = 0;
};

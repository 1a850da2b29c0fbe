// The change notices as the messenger server receives them: one 32-byte datagram on its port.

#include "platform/ChangeNotice.h"

#include <QNetworkDatagram>
#include <QTest>
#include <QUdpSocket>

using namespace sable;

class TestChangeNotice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onTheWire_data();
    void onTheWire();
    void nobodyListening();
};

void TestChangeNotice::onTheWire_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QByteArray>("expected");
    const QByteArray head = QByteArray::fromHex("00000001"
                                                "000000000000000000000000");
    const QByteArray tail = QByteArray::fromHex("00000001"
                                                "cccccccccccccccc");
    QTest::newRow("reload database") << int(ChangeNotice::Kind::ReloadDatabase)
                                     << head + QByteArray::fromHex("00000dac") + tail;
    QTest::newRow("reload client settings")
        << int(ChangeNotice::Kind::ReloadClientSettings) << head + QByteArray::fromHex("00000daf") + tail;
}

void TestChangeNotice::onTheWire()
{
    QFETCH(int, kind);
    QFETCH(QByteArray, expected);
    QUdpSocket receiver;
    QVERIFY(receiver.bind(QHostAddress::LocalHost, 0));
    const auto port = receiver.localPort();
    // Twice: the same notice gives the same datagram.
    for (int round = 0; round < 2; ++round) {
        QVERIFY(ChangeNotice::send(static_cast<ChangeNotice::Kind>(kind), port));
        QTRY_VERIFY(receiver.hasPendingDatagrams());
        const QNetworkDatagram datagram = receiver.receiveDatagram();
        QCOMPARE(datagram.data().size(), 32);
        QCOMPARE(datagram.data(), expected);
        QCOMPARE(datagram.senderAddress(), QHostAddress(QHostAddress::LocalHost));
    }
}

void TestChangeNotice::nobodyListening()
{
    QUdpSocket probe;
    QVERIFY(probe.bind(QHostAddress::LocalHost, 0));
    const auto port = probe.localPort();
    probe.close();
    QVERIFY(ChangeNotice::send(ChangeNotice::Kind::ReloadDatabase, port));
}

QTEST_GUILESS_MAIN(TestChangeNotice)
#include "tst_change_notice.moc"

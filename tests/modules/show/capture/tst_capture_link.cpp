// The messages between the console and the capture program, and what the console does not believe.
#include <sys/mman.h>

#include <QtTest>

#include "CaptureChannel.h"
#include "CaptureRequest.h"
#include "PictureRing.h"

using namespace korvia;

namespace {

constexpr std::uint64_t kSlotBytes = 64 * 1024;

RingMessage ringOf(std::uint32_t slotCount) {
  RingMessage ring;
  ring.serial = 7;
  ring.slotBytes = kSlotBytes;
  ring.slotCount = slotCount;
  return ring;
}

PictureMessage pictureIn(std::uint32_t slot, int width, int height) {
  PictureMessage message;
  message.serial = 7;
  message.slot = slot;
  message.width = width;
  message.height = height;
  message.stride = width * 4;
  return message;
}

}  // namespace

class tst_capture_link : public QObject {
  Q_OBJECT

 private slots:
  void requestComesBack() {
    CaptureRequest request;
    request.kind = CaptureKind::Window;
    request.rateNumerator = 30000;
    request.rateDenominator = 1001;
    request.address = QStringLiteral("https://example.invalid/ä?a=b");
    request.width = 1920;
    request.height = 1080;
    request.windowId = QStringLiteral("0x1a00004");
    request.windowTitle = QStringLiteral("\"title\"");
    request.windowProgram = QStringLiteral("Program");
    request.screenIndex = 2;
    request.mostMemoryBytes = 5'000'000'000;
    const auto copy = CaptureRequest::fromBytes(request.toBytes());
    QVERIFY(copy);
    QCOMPARE(copy->toBytes(), request.toBytes());
    QCOMPARE(copy->mostMemoryBytes, request.mostMemoryBytes);
    QVERIFY(copy->kind == CaptureKind::Window);
  }

  void wrongRequestsAreRefused() {
    QVERIFY(!CaptureRequest::fromBytes("no request"));
    CaptureRequest request;
    request.rateDenominator = 0;
    QVERIFY(!CaptureRequest::fromBytes(request.toBytes()));
    request = {};
    request.rateNumerator = 5000;
    QVERIFY(!CaptureRequest::fromBytes(request.toBytes()));
    request = {};
    request.width = kPageSideMax + 1;
    QVERIFY(!CaptureRequest::fromBytes(request.toBytes()));
  }

  void messagesAndDescriptorsArrive() {
    auto [left, right] = CaptureChannel::pair();
    CapturePacket packet;
    QCOMPARE(right.receive(packet), CaptureChannel::Received::Nothing);
    KeyMessage key;
    key.pressed = 1;
    QVERIFY(left.sendHead(CaptureMessage::Key, key, "Return"));
    QCOMPARE(right.receive(packet), CaptureChannel::Received::Message);
    QVERIFY(packet.kind == CaptureMessage::Key);
    QCOMPARE(packet.head<KeyMessage>()->pressed, 1);
    QCOMPARE(packet.after<KeyMessage>(), QByteArray("Return"));
    QVERIFY(!packet.head<PictureMessage>());
    QVERIFY(!packet.descriptor.isOpen());

    const SharedMemory memory = SharedMemory::create(kSlotBytes);
    QVERIFY(left.send(CaptureMessage::Ring, {}, memory.descriptor()));
    QCOMPARE(right.receive(packet), CaptureChannel::Received::Message);
    QVERIFY(packet.descriptor.isOpen());
    QVERIFY(packet.descriptor.get() != memory.descriptor());

    left = CaptureChannel();
    QCOMPARE(right.receive(packet), CaptureChannel::Received::Closed);
    QVERIFY(!right.send(CaptureMessage::Load));
  }

  void pictureIsReadWhereItWasWritten() {
    SharedMemory memory = SharedMemory::create(kSlotBytes * 2);
    memory.data()[kSlotBytes] = 123;
    PictureRing ring;
    QVERIFY(ring.takeRing(*packetOf(ringOf(2), memory.descriptor())));
    const auto picture = ring.pictureOf(pictureIn(1, 16, 16));
    QVERIFY(picture);
    QCOMPARE(int(picture->data[0]), 123);
    QCOMPARE(picture->stride, 64);
  }

  void wrongPicturesAreRefused() {
    const SharedMemory memory = SharedMemory::create(kSlotBytes * 2);
    PictureRing ring;
    QVERIFY(!ring.pictureOf(pictureIn(0, 16, 16)));
    QVERIFY(ring.takeRing(*packetOf(ringOf(2), memory.descriptor())));
    QVERIFY(ring.pictureOf(pictureIn(1, 128, 128)));
    QVERIFY(!ring.pictureOf(pictureIn(2, 16, 16)));
    QVERIFY(!ring.pictureOf(pictureIn(1, 128, 129)));
    QVERIFY(!ring.pictureOf(pictureIn(1, 0, 16)));
    QVERIFY(!ring.pictureOf(pictureIn(1, 16, -16)));
    // Four bytes a pixel are more than an int can count.
    PictureMessage other = pictureIn(1, 16, 1);
    other.width = 0x40000001;
    QVERIFY(!ring.pictureOf(other));
    other = pictureIn(1, 16, 16);
    other.serial = 8;
    QVERIFY(!ring.pictureOf(other));
    other = pictureIn(1, 16, 16);
    other.stride = 63;
    QVERIFY(!ring.pictureOf(other));
    other = pictureIn(1, 16, 16);
    other.layout = static_cast<CaptureLayout>(9);
    QVERIFY(!ring.pictureOf(other));
  }

  // Such memory could be taken away while the console reads it.
  void memoryThatCanShrinkIsRefused() {
    PictureRing ring;
    const FileDescriptor open(::memfd_create("test", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    QCOMPARE(::ftruncate(open.get(), static_cast<off_t>(kSlotBytes * 2)), 0);
    QVERIFY(!ring.takeRing(*packetOf(ringOf(2), open.get())));
    const SharedMemory small = SharedMemory::create(kSlotBytes);
    QVERIFY(!ring.takeRing(*packetOf(ringOf(2), small.descriptor())));
    QVERIFY(!ring.takeRing(*packetOf(ringOf(kMostSlots + 1), small.descriptor())));
    QVERIFY(!ring.takeRing(*packetOf(ringOf(1), -1)));
  }

 private:
  std::unique_ptr<CapturePacket> packetOf(const RingMessage& ring, int descriptor) {
    auto [from, to] = CaptureChannel::pair();
    from.sendHead(CaptureMessage::Ring, ring, {}, descriptor);
    auto packet = std::make_unique<CapturePacket>();
    to.receive(*packet);
    return packet;
  }
};

QTEST_GUILESS_MAIN(tst_capture_link)
#include "tst_capture_link.moc"

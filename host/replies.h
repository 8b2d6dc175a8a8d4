// What a reply says to a person. The verdict itself is the driver's.
#pragma once

#include <QByteArray>

#include <string>

/// True for an exception reply to the frame, as far as its first two bytes and its length tell.
bool isException(const QByteArray &reply, const QByteArray &frame);

/// Why a reply that the driver refused is no answer to the frame: "no answer", "exception 2 (illegal
/// data address)", "3 of 7 bytes", "wrong CRC".
std::string refusalOf(const QByteArray &reply, const QByteArray &frame, int expectedBytes);

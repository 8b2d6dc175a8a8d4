// Cuts consecutive registers into requests of at most maxRegs registers.
#pragma once

#include "velko_modbus_rtu.h"

/// Returns the host's maxRegs, or 1 if it is less than 1.
inline int usableMaxRegs(int maxRegs)
{
    return qMax(maxRegs, 1);
}

/// Pieces of maxRegs registers each; the last piece may be shorter. If `registers` is less than 1,
/// there are no pieces.
class RegisterPieces
{
public:
    RegisterPieces(int registers, int maxRegs)
        : m_registers(qMax(registers, 0)),
          m_perPiece(usableMaxRegs(maxRegs))
    {
    }

    int full() const { return m_registers / m_perPiece; }
    int count() const { return full() + (rest() > 0 ? 1 : 0); }
    int rest() const { return m_registers % m_perPiece; }

    /// Number of registers before piece `index`, which is 0 to full().
    int start(int index) const { return index * m_perPiece; }

    /// Number of registers in piece `index`, which is 0 to count() - 1.
    int size(int index) const { return index < full() ? m_perPiece : rest(); }

private:
    int m_registers;
    int m_perPiece;
};

/// Returns one piece of a record in read form. The piece keeps the record's other fields.
inline RW_VAR pieceOf(const RW_VAR &record, const RegisterPieces &pieces, int index)
{
    RW_VAR piece = record;
    // Unsigned, so that the sum wraps if a host's record ends above the largest int.
    piece.addr = static_cast<int>(static_cast<unsigned int>(record.addr)
                                  + static_cast<unsigned int>(pieces.start(index)));
    piece.count = pieces.size(index);
    return piece;
}

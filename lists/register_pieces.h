// The cutting of a run of registers into requests of at most maxRegs registers.
#pragma once

#include "driver/records.h"

/// A host's maxRegs as it is used: less than 1 counts as 1.
inline int usableMaxRegs(int maxRegs)
{
    return qMax(maxRegs, 1);
}

/// Pieces of maxRegs registers each, the last one shorter where they do not come out even. A run of
/// no registers, or less, has no pieces.
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

    /// Registers before piece `index`, which is 0 to full().
    int start(int index) const { return index * m_perPiece; }

    /// Registers of piece `index`, which is 0 to count() - 1.
    int size(int index) const { return index < full() ? m_perPiece : rest(); }

private:
    int m_registers;
    int m_perPiece;
};

/// The piece of a record in read form; its other fields are the record's.
inline RW_VAR pieceOf(const RW_VAR &record, const RegisterPieces &pieces, int index)
{
    RW_VAR piece = record;
    // Wraps where a host's own record ends past the largest number.
    piece.addr = static_cast<int>(static_cast<unsigned int>(record.addr)
                                  + static_cast<unsigned int>(pieces.start(index)));
    piece.count = pieces.size(index);
    return piece;
}

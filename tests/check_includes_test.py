"""scripts/check-includes on a copy of the tree, whole and with planted mistakes.

    check_includes_test.py SOURCE_TREE
"""
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path()
FOLDERS = ["include", "driver", "bytes", "lists", "store", "frames", "exchange", "host"]

# File, what is added at its end, what the script says.
PLANTED = [
    ("lists/address_model.cpp", '#include "frames/Func_Read.h"', "frames/Func_Read, which is in a higher layer"),
    ("driver/station_table.cpp", "int f() { return GetRegisterData(0, 0, QString(), 0, 0, 0); }",
     "driver/station_table depends on store/Func_GetOrSetData"),
    ("host/core/line/crc16.cpp", '#include "bytes/Func_Check.h"', "of the host depends on bytes/Func_Check"),
    ("host/core/session/snapshot.h", '#include "host/views/summary.h"', "host/views/summary, which is in a higher"),
    ("store/data_store.cpp", '#include "tests/script.h"', "which is above all layers"),
    ("lists/address_model.cpp", "#include <frames/Func_Read.h>", "frames/Func_Read, which is in a higher layer"),
    ("bytes/wire_order.cpp", "int g() { return ::QueryFinishFlag() + ::AddListReadVar(0); }",
     "bytes/wire_order depends on lists/Func_Initi"),
    ("lists/address_model.cpp", "auto *const p = DataCom;", "depends on exchange/reply_handling"),
    ("lists/address_model.cpp", "void WriteRegister(RW_VAR *record);", "declares a function instead of"),
    ("host/views/json_view.cpp", '#include "host/views/live_table.h"', "which is not for the files of its folder"),
    ("driver/units.h", '#include "driver/records.h"\n', None),
    ("driver/records.h", '#include "driver/modbus_rtu_master.h"\n',
     "a cycle: driver/modbus_rtu_master -> driver/records -> driver/modbus_rtu_master"),
    ("driver/new_file.h", "#pragma once\n", "driver/new_file is not on the map"),
    ("docs/architecture.md", "\n### `nothing/`: x\n| `gone` | x |\n", "nothing/gone is on the map"),
]


class CheckIncludesTest(unittest.TestCase):
    def test_what_is_planted_is_found(self):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            for name in FOLDERS:
                shutil.copytree(SOURCE / name, root / name)
            (root / "docs").mkdir()
            shutil.copy(SOURCE / "docs/architecture.md", root / "docs")
            self.check(root, None)
            for name, text, message in PLANTED:
                with self.subTest(name=name, text=text):
                    path = root / name
                    before = path.read_text() if path.exists() else None
                    path.write_text((before or "") + text)
                    self.check(root, message)
                    path.unlink() if before is None else path.write_text(before)

    def check(self, root, message):
        result = subprocess.run([SOURCE / "scripts/check-includes", root], capture_output=True, text=True)
        self.assertEqual(result.returncode, 0 if message is None else 1, result)
        self.assertIn(message or "no upward dependency", result.stdout + result.stderr)


if __name__ == "__main__":
    SOURCE = pathlib.Path(sys.argv.pop(1))
    unittest.main(verbosity=2)

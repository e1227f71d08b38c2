"""Reads the session's state, and what each adapter is used for. The daemon's port may be given.

    python3 state.py [PORT]
"""

import sys

from kelvarissdk import Client, KelvarisError

port = int(sys.argv[1]) if len(sys.argv) > 1 else None
try:
    with Client(port=port) as client:
        print(client.get_state().state)
        for adapter in client.get_adapters().adapters:
            print(f"{adapter.name or adapter.adapter_id}: {adapter.state}, used {adapter.priority}")
except KelvarisError as error:
    sys.exit(f"{error.code}: {error}")

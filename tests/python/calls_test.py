"""What becomes of arguments, of records and of errors."""

import contextlib
import inspect
import unittest
from collections.abc import Iterable
from datetime import date, datetime, timedelta, timezone
from ipaddress import IPv4Address

import kelvarissdk
from kelvarissdk import *
from kelvarissdk import _abi, _calls, _values, errors
from support import Daemon, Simulator


def descriptions():
    for name, member in inspect.getmembers(kelvarissdk.Client):
        if description := getattr(member, "description", None):
            yield description


class Reached(unittest.TestCase):
    """A handle that is null refuses each call, once it has come so far."""

    samples = {
        "str": "x",
        "str | None": None,
        "bool": True,
        "Iterable[str]": ["x"],
        "Iterable[IPv4Address | str]": ["1.2.3.4"],
        "Iterable[IPv6Address | str]": ["::1"],
        "Iterable[ProtocolPortPair]": [ProtocolPortPair(PortProtocol.UDP, 53)],
        "Iterable[timedelta]": [ALL_TIME],
    }

    def test_all_functions(self):
        reached = set()
        for description in descriptions():
            parameters = list(description.signature.parameters.values())[1:]
            given = [self.samples.get(each.annotation, 1) for each in parameters]
            with self.subTest(description.name):
                head = description.begin(None, description.bind(tuple(given), {}), _calls.NOBODY)
                self.assertTrue(head.error)
                self.assertIn(head.errorCode, (ErrorType.SDK, ErrorType.INVALID_ARGUMENT))
            reached.add(description.name.removeprefix("KelvarisSDK_"))
        self.assertEqual(ErrorType.SDK.to_string(), "An error in the SDK")
        for enumeration in _abi.Enumeration.__subclasses__():
            self.assertTrue(enumeration(0).to_string())
            reached.add(enumeration.__name__.replace("SafeBrowsing", "SafeBrowsing_") + "_toString")
        self.assertEqual(LocalProxyMatchMode.DENYLIST.to_string(), "denylist")
        reached.remove("LocalProxyMatchMode_toString")  # which there isn't
        server = ServerInformationDetailed("us", "nyc", 12, False, True, ())
        plain = ServerInformation("us", "nyc", 12, False)
        self.assertEqual(server.to_string(), "United States - New York City #12")
        self.assertEqual(plain.to_string(), server.to_string())
        self.assertEqual(plain.get_country_name() + plain.get_city_name(), "United StatesNew York City")
        reached |= {"ServerInformationDetailed_toString", "ServerInformation_toString"}
        reached |= {"ServerInformation_GetCountryName", "ServerInformation_GetCityName"}
        # The client itself is made of these.
        reached |= {"InitializeCreateSettings", "CreateWithSettings", "Destroy", "UnregisterCallback"}
        self.assertEqual({f"KelvarisSDK_{name}" for name in reached}, set(_abi.FUNCTIONS))
        self.assertEqual(len(reached), 118)


class Arguments(unittest.TestCase):
    def test_as_they_are_sent(self):
        ports = [ProtocolPortPair(PortProtocol.UDP, 53), ProtocolPortPair(PortProtocol.TCP, 80)]
        plain_ports = [{"port": 53, "proto": "udp"}, {"port": 80, "proto": "tcp"}]
        rows = [
            (lambda c: c.login("ü", password="p"), "login", {"username": "ü", "password": "p"}),
            (lambda c: c.connect_auto(), "server_auto_connect", {"server": "auto"}),
            (lambda c: c.connect_auto(AutoConnectMethod.P2P), "server_auto_connect", {"server": "p2p"}),
            (lambda c: c.connect_server("us", "nyc", 3), "server_auto_connect", {"server": "us|nyc|3"}),
            (lambda c: c.set_directory_domain(None), "set_directory_domain", None),
            (lambda c: c.reset_directory_gateway_uri(), "set_directory_gateway_uri", None),
            (
                lambda c: c.set_forward_ports(ports),
                "set_connection_forward_ports",
                {"forward_ports": plain_ports},
            ),
            (lambda c: c.set_captive_portal_login_mode(False), "set_cplogin_enable", {"enable": False}),
            (
                lambda c: c.set_adapter_monthly_data_limit("a", reset_day=4, bytes=1 << 40),
                "set_network_limit",
                {"max": 1 << 40, "network": "a", "resetDay": 4},
            ),
            (
                lambda c: c.set_firewall_domains("d" * 50 for _ in range(130)),
                "set_firewall_domains",
                {"domains": ["d" * 50] * 100},
            ),
            (
                lambda c: c.set_firewall_ipv4([IPv4Address("1.2.3.4"), "255.0.0.1"]),
                "set_firewall_ipv4",
                {"ipv4": ["1.2.3.4", "255.0.0.1"]},
            ),
            (lambda c: c.set_local_proxy_ipv6(["fe80::1"]), "set_localproxy_ipv6", {"ipv6": ["fe80::1"]}),
            (lambda c: c.set_streaming_ports([]), "set_streaming_ports", {"ports": []}),
            (
                lambda c: c.report_safe_browsing_home_network_with_parameters(1, 2, (1 << 63) - 1),
                "safe_browsing_report_home_network",
                {"retries": 1, "delay": 2, "timeout": (1 << 63) - 1},
            ),
            (
                lambda c: c.enable_stat_updates(True, [CURRENT_SESSION, timedelta(days=1), ALL_TIME]),
                "stat_subscribe",
                {"enable": True, "periods": [0, 24, 0xFFFFFFFF]},
            ),
        ]
        with Daemon() as daemon, Client(port=daemon.port, app_name="ä", probing=False) as client:
            for call, name, payload in rows:
                with self.subTest(name), contextlib.suppress(CallTimeoutError):
                    call(client if name == "stat_subscribe" else client.within(0))
            self.assertEqual([daemon.request() for _ in rows], [row[1:] for row in rows])

    def test_that_would_be_cut_are_refused(self):
        with Daemon() as daemon, Client(port=daemon.port, probing=False) as client:
            refused = [
                (ValueError, lambda: client.login("user\0", "p")),
                (ValueError, lambda: client.connect_server("us", "nyc", 1 << 31)),
                (ValueError, lambda: client.set_adapter_daily_data_limit("a", 1 << 63)),
                (ValueError, lambda: client.set_firewall_domains(["ä" * 26])),
                (ValueError, lambda: client.set_firewall_ports([ProtocolPortPair(PortProtocol.TCP, 65536)])),
                (ValueError, lambda: client.set_streaming_ipv4(["1.2.3"])),
                (ValueError, lambda: client.enable_stat_updates(True, [timedelta(minutes=90)])),
                (TypeError, lambda: client.set_jumbo_packets("off")),
                (TypeError, lambda: client.set_dns_servers("1.1.1.1")),
                (TypeError, lambda: client.connect_country(b"us")),
                (TypeError, lambda: client.connect_country()),
                (InvalidArgumentError, lambda: client.connect_country(None)),
                (InvalidArgumentError, lambda: client.set_connect_method_auto(AutoConnectMethod.LAST)),
                (ValueError, lambda: Client(port=65536)),
                (ValueError, lambda: Client("a" * 46)),
                (ValueError, lambda: Client(app_name="a" * 33)),
                (ValueError, lambda: client.states(keep=0)),
            ]
            for error, call in refused:
                with self.assertRaises(error):
                    call()
            client.daemon_exit()
            self.assertEqual(daemon.request(), ("exit", None))  # nothing was sent before


class Values(unittest.TestCase):
    def of(self, kind, **fields):
        record = getattr(_abi, kind.__name__)()
        for name, value in fields.items():
            setattr(record, name, value)
        return _values.converter(kind)(record)

    def test_texts_and_numbers_of_others(self):
        cut = ("d" * 98 + "€").encode()[:100]  # the last character has room for two of its three bytes
        self.assertEqual(self.of(DirectorySettingsResult, domain=cut).domain, "d" * 98 + "\ufffd")
        usage = self.of(AdapterUsageData, max=-1, maxDaily=-1, overlimitRate=0, resetDay=0)
        self.assertEqual(
            (usage.max, usage.max_daily, usage.reset_day, usage.overlimit_rate), (None, None, None, 0)
        )
        self.assertIs(self.of(StateResult, state=77).state, State.UNKNOWN)
        server = _abi.ConnectResult()
        server.server.publicIPCount = 99  # of 12
        server.server.publicIP[11].value = b"1.2.3.4"
        addresses = _values.converter(ConnectResult)(server).server.public_ip
        self.assertEqual((len(addresses), addresses[11]), (12, "1.2.3.4"))
        lists = _abi.ListBlock(ipv6Count=2)
        lists.ipv6[1].s6_addr32[3] = 1 << 24
        self.assertEqual(list(map(str, _values.converter(ListBlock)(lists).ipv6)), ["None", "::1"])

    def test_times(self):
        self.assertIsNone(self.of(AccountingResult).period_end_date)
        day = _abi.tm(tm_year=126, tm_mon=10, tm_mday=23)
        account = self.of(AccountingResult, periodEndDate=day, minutesAvail=90)
        self.assertEqual(account.period_end_date, date(2026, 11, 23))
        self.assertEqual(account.minutes_avail, timedelta(hours=1.5))
        moments = {0: None, 1 << 62: None, 86400: datetime(1970, 1, 2, tzinfo=timezone.utc)}
        for seconds, moment in moments.items():
            self.assertEqual(self.of(SpeedTestEntry, time=seconds).time, moment)
        stats = self.of(SessionStats, periodHours=0xFFFFFFFF, totalConnectedMinutes=-(1 << 63))
        self.assertEqual((stats.period_hours, stats.total_connected_minutes), (ALL_TIME, timedelta.min))

    def test_each_field_has_its_own_value(self):
        """A record whose bytes all differ becomes a value in which no field has that of another."""
        for kind in (SessionStats, ConnectionStats, StreamStats, SafeBrowsingStatsResult):
            structure = getattr(_abi, kind.__name__)
            own = [(name, each) for name, each in structure._fields_ if name != "base"]
            given = {}
            for number, (name, each) in enumerate(own, start=1):
                value = number % 2 if each is _values.ctypes.c_bool else number
                given[name] = str(number).encode() if hasattr(each, "_length_") else value
            value = self.of(kind, **given)
            for name, number in given.items():
                found = getattr(value, _values.snake_case(name))
                if isinstance(found, timedelta):
                    unit = {"Ms": 0.001, "rs": 3600, "st": 86400, "es": 60}[name[-2:]]
                    found = round(found.total_seconds() / unit)
                elif isinstance(found, _abi.Enumeration):
                    number = type(found)(number)
                plain = number.decode() if isinstance(number, bytes) else number
                self.assertEqual(found, plain, f"{kind.__name__}.{name}")


class Errors(unittest.TestCase):
    def test_classes(self):
        for code in ErrorType:
            error = errors.error_of(int(code), "why")
            self.assertEqual((error.code, error.number, str(error)), (code, int(code), "why"))
            self.assertEqual(type(error) is KelvarisError, code in (ErrorType.UNKNOWN, ErrorType.ASYNC_CALL))
        self.assertEqual((errors.error_of(9).code, errors.error_of(9).number), (ErrorType.UNKNOWN, 9))
        self.assertIsInstance(CallTimeoutError(), TimeoutError)
        self.assertIsInstance(NotConnectedError(), ConnectionError)
        self.assertEqual(str(CredentialsError()), ErrorType.CREDENTIALS.to_string())

    def test_of_the_daemon(self):
        with Simulator("--lock", "set_dev_jumbo_packets=1", "--connect-error", 4) as simulator:
            with Client(port=simulator.port) as client:
                with self.assertRaises(CredentialsError):
                    client.login("nobody", "wrong")
                client.login("demo", "demo")
                with self.assertRaises(DirectoryError):
                    client.connect_country("us")
                with self.assertRaises(LockedByServerError):
                    client.set_jumbo_packets(True)

    def test_irregular_calls(self):
        """Both steps of the start end with one report; the callback of a reset has no user data."""
        answers = {
            "initialize_safe_browsing": [
                ("safe_browsing_connect_error", {"error": 7, "msg": "m"}),
                ("safe_browsing_settings", {"enabled": True}),
            ],
            "set_directory_domain": [("directory_settings", {"domain": "d"})],
        }
        with Daemon(answers) as daemon, Client(port=daemon.port) as client:
            started = client.start_safe_browsing("c")
            self.assertEqual((started.connect_error_set, started.connect_error_code), (True, 7))
            self.assertEqual(client.reset_directory_domain().domain, "d")
            with client.listen_for_safe_browsing_block() as blocks:
                daemon.send("safe_browsing_block", {"host": "h", "redirected": True})
                self.assertEqual(blocks.get(5).host, "h")


if __name__ == "__main__":
    unittest.main()

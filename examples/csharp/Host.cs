// A host in C#: the kill switch, the protection of a tunnel, the Skein network, and all of it off again.
using System;
using System.Net;
using Corvane;

internal static class Host
{
    private static int Main()
    {
        NativeFirewall.Log = line => Console.WriteLine("  " + line);
        NativeFirewall.Initialize(new HostIdentity
        {
            Provider = Identity(1, "Example", "A host in C#"),
            KillSwitch = Identity(2, "Kill switch", ""),
            LocalNetwork = Identity(3, "", "Local networks"),
            Dhcp = Identity(4, "DHCP", ""),
            DnsLeak = Identity(5, "Name look-ups", ""),
            InterfaceLeak = Identity(6, "Tunnel", ""),
            FirewallCopy = Identity(7, "Blocked applications", ""),
            Skein = Identity(8, "Skein", ""),
            DnsPermittedAppPath = @"C:\Program Files\Example\resolver.exe",
        });
        try
        {
            NativeFirewall.DisableInternet(new[] { @"C:\Program Files\Example\host.exe" }, new[] { "Tunnel", "Überbrückung" });
            NativeFirewall.EnableDhcp();
            NativeFirewall.EnableLeakProtection(IPAddress.Parse("203.0.113.9"), 0x6000008000000,
                                                permitted: new[] { IPAddress.Parse("198.51.100.7") });
            NativeFirewall.DisableLocalNetwork();
            NativeFirewall.EnableSkeinFirewallRules(
                0, new[] { "Skein" }, new[] { IPAddress.Parse("100.64.0.1"), IPAddress.Parse("100.64.0.2") });
            Console.WriteLine("internet enabled: " + NativeFirewall.IsInternetEnabled);
            Console.WriteLine("leak protection enabled: " + NativeFirewall.IsLeakProtectionEnabled);

            NativeFirewall.DisableSkeinFirewallRules();
            NativeFirewall.EnableLocalNetwork();
            NativeFirewall.DisableLeakProtection();
            NativeFirewall.DisableDhcp();
            NativeFirewall.EnableInternet();
            return 0;
        }
        catch (NativeFirewallException error)
        {
            Console.WriteLine(error.Command + ": code " + error.Code + ", " + error.Message);
            return 1;
        }
    }

    // Made once for this product, and kept in all releases.
    private static ObjectIdentity Identity(int number, string name, string description) =>
        new ObjectIdentity(new Guid(number, 0x5e1f, 0x4c6a, 0x8e, 0x11, 0x3a, 0x52, 0x90, 0x6b, 0x77, 0x04), name, description);
}

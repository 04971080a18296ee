// Corvane.Native.Firewall.dll for .NET: a class with the sixteen functions that takes sequences, throws
// exceptions, serialises calls and keeps its callback alive. Put the DLL beside the program; 64-bit only.
using System;
using System.Collections.Generic;
using System.Linq;
using System.Net;
using System.Net.Sockets;
using System.Runtime.InteropServices;
using System.Text;

namespace Corvane
{
    /// <summary>A command failed.</summary>
    public sealed class NativeFirewallException : Exception
    {
        internal NativeFirewallException(string command, ulong code, string text)
            : base(text.Length > 0 ? text : command + " failed")
        {
            Command = command;
            Code = code;
        }

        public string Command { get; }

        /// <summary>A Windows or FWP_E_ code; 1 if there is none; 904 for a failure outside the engine.</summary>
        public ulong Code { get; }
    }

    /// <summary>The key, name and description of an object of the filtering engine.</summary>
    public sealed class ObjectIdentity
    {
        public ObjectIdentity(Guid key, string name, string description)
        {
            Key = key;
            Name = name ?? throw new ArgumentNullException(nameof(name));
            Description = description ?? throw new ArgumentNullException(nameof(description));
        }

        public Guid Key { get; }
        public string Name { get; }
        public string Description { get; }
    }

    /// <summary>The arguments of Initialize; all of them must be set.</summary>
    public sealed class HostIdentity
    {
        public ObjectIdentity Provider { get; set; }
        public ObjectIdentity KillSwitch { get; set; }
        public ObjectIdentity LocalNetwork { get; set; }
        public ObjectIdentity Dhcp { get; set; }
        public ObjectIdentity DnsLeak { get; set; }
        public ObjectIdentity InterfaceLeak { get; set; }
        public ObjectIdentity FirewallCopy { get; set; }
        public ObjectIdentity Skein { get; set; }

        /// <summary>Full path of the only program whose name look-ups may bypass the tunnel.</summary>
        public string DnsPermittedAppPath { get; set; }
    }

    /// <summary>
    /// The firewall layer. Everything that it installs is removed when the process ends. A sequence may be null,
    /// which means the same as empty, unless its description says otherwise. Addresses are IPv4.
    /// </summary>
    public static class NativeFirewall
    {
        private static readonly object Gate = new object();
        // Native code holds no reference to it. If it were made for each call, it could be collected during the
        // call.
        private static readonly LogCallback Callback = ReceiveLine;
        private static bool isInitialized;

        /// <summary>Receives the lines of the log, during a command and on its thread; may be null. It must not
        /// call a command. Its exceptions are ignored.</summary>
        public static Action<string> Log { get; set; }

        /// <summary>Must be called first. A second call removes everything that was installed.</summary>
        public static void Initialize(HostIdentity host)
        {
            Require(host, nameof(host));
            ObjectIdentity[] all =
            {
                host.Provider, host.KillSwitch, host.LocalNetwork, host.Dhcp,
                host.DnsLeak, host.InterfaceLeak, host.FirewallCopy, host.Skein,
            };
            if (all.Contains(null) || host.DnsPermittedAppPath == null)
            {
                throw new ArgumentException("Each identity has to be set.", nameof(host));
            }
            Guid[] keys = all.Select(identity => identity.Key).ToArray();
            lock (Gate)
            {
                Native.Initialize(
                    ref keys[0], all[0].Name, all[0].Description, ref keys[1], all[1].Name, all[1].Description,
                    ref keys[2], all[2].Name, all[2].Description, ref keys[3], all[3].Name, all[3].Description,
                    ref keys[4], all[4].Name, all[4].Description, ref keys[5], all[5].Name, all[5].Description,
                    ref keys[6], all[6].Name, all[6].Description, ref keys[7], all[7].Name, all[7].Description,
                    host.DnsPermittedAppPath);
                isInitialized = true;
            }
        }

        public static bool IsInternetEnabled => Ask(Native.IsInternetEnabled);
        public static bool IsDhcpEnabled => Ask(Native.IsDhcpEnabled);
        public static bool IsLeakProtectionEnabled => Ask(Native.IsLeakProtectionEnabled);
        public static bool IsLocalNetworkEnabled => Ask(Native.IsLocalNetworkEnabled);

        /// <summary>Removes the kill switch.</summary>
        public static void EnableInternet() => Run(nameof(EnableInternet), Native.EnableInternet);

        /// <summary>Installs the kill switch, or replaces it without a gap.</summary>
        /// <param name="apps">Full paths of programs that stay connected.</param>
        /// <param name="interfaceNames">Texts to search in the descriptions of network adapters; those found
        /// are not cut off. Not used if there are apps.</param>
        public static void DisableInternet(IEnumerable<string> apps = null,
                                           IEnumerable<string> interfaceNames = null)
        {
            string[] paths = Copy(apps);
            string[] names = interfaceNames == null ? null : Copy(interfaceNames);
            Run(nameof(DisableInternet),
                () => Native.DisableInternet(paths, (uint)paths.Length, names, (uint)(names?.Length ?? 0), Callback));
        }

        /// <summary>Installs the rule set that permits DHCP.</summary>
        public static void EnableDhcp() => Run(nameof(EnableDhcp), () => Native.EnableDhcp(Callback));

        public static void DisableDhcp() => Run(nameof(DisableDhcp), () => Native.DisableDhcp(Callback));

        /// <summary>Keeps traffic inside the tunnel; a second call only replaces addresses. If a rule set
        /// cannot be built, it is left out without an exception: ask IsLeakProtectionEnabled afterwards.</summary>
        /// <param name="server">The VPN server, reachable over any interface.</param>
        /// <param name="interfaceLuid">The NET_LUID of the tunnel; 0 to look for the names.</param>
        /// <param name="interfaceNames">Texts to look for in the descriptions of network adapters.</param>
        /// <param name="permitted">Further addresses that are reachable over any interface.</param>
        public static void EnableLeakProtection(IPAddress server, ulong interfaceLuid,
                                                IEnumerable<string> interfaceNames = null,
                                                IEnumerable<IPAddress> permitted = null)
        {
            ToHostOrder(Require(server, nameof(server)));
            string[] names = Copy(interfaceNames);
            uint[] addresses = Copy(permitted);
            // This command sets no error text; the text that is there comes from another command.
            Run(nameof(EnableLeakProtection),
                () => Native.EnableLeakProtection(server.ToString(), Callback, names, (uint)names.Length,
                                                  interfaceLuid, addresses, (ulong)addresses.Length),
                () => "");
        }

        public static void DisableLeakProtection() =>
            Run(nameof(DisableLeakProtection), Native.DisableLeakProtection, () => "");

        /// <summary>Removes the block of local networks.</summary>
        public static void EnableLocalNetwork() => Run(nameof(EnableLocalNetwork), Native.EnableLocalNetwork);

        /// <summary>Blocks local networks.</summary>
        public static void DisableLocalNetwork() =>
            Run(nameof(DisableLocalNetwork), () => Native.DisableLocalNetwork(Callback));

        /// <summary>Installs the rule set of the Skein network; replaces an earlier one.</summary>
        /// <param name="interfaceLuid">The NET_LUID of its interface; 0 to look for the names.</param>
        /// <param name="interfaceNames">Texts to look for in the descriptions of network adapters.</param>
        /// <param name="peers">The addresses whose connections are permitted.</param>
        public static void EnableSkeinFirewallRules(ulong interfaceLuid, IEnumerable<string> interfaceNames = null,
                                                    IEnumerable<IPAddress> peers = null)
        {
            string[] names = Copy(interfaceNames);
            uint[] addresses = Copy(peers);
            Run(nameof(EnableSkeinFirewallRules),
                () => Native.EnableSkeinFirewallRules(Callback, names, (uint)names.Length, interfaceLuid, addresses,
                                                      (ulong)addresses.Length));
        }

        public static void DisableSkeinFirewallRules() =>
            Run(nameof(DisableSkeinFirewallRules), Native.DisableSkeinFirewallRules);

        private static bool Ask(Func<ulong> query)
        {
            lock (Gate)
            {
                return query() == 1;
            }
        }

        private static void Run(string name, Func<ulong> command) =>
            Run(name, command, () => Utf8At(Native.GetErrorText()));

        private static void Run(string name, Func<ulong> command, Func<string> errorText)
        {
            lock (Gate)
            {
                // Without Initialize the library would end the process.
                if (!isInitialized)
                {
                    throw new InvalidOperationException("Initialize comes first.");
                }
                ulong code = command();
                if (code != 0)
                {
                    throw new NativeFirewallException(name, code, errorText());
                }
            }
        }

        private static ulong ReceiveLine(IntPtr line)
        {
            try
            {
                Log?.Invoke(Utf8At(line));
            }
            catch (Exception)
            {
                // An exception must not pass through native code.
            }
            return 0;
        }

        private static T Require<T>(T argument, string name) where T : class =>
            argument ?? throw new ArgumentNullException(name);

        private static string[] Copy(IEnumerable<string> texts)
        {
            string[] copy = texts?.ToArray() ?? new string[0];
            if (copy.Contains(null))
            {
                throw new ArgumentException("None of the texts may be null.", nameof(texts));
            }
            return copy;
        }

        private static uint[] Copy(IEnumerable<IPAddress> addresses) =>
            addresses?.Select(ToHostOrder).ToArray() ?? new uint[0];

        private static uint ToHostOrder(IPAddress address)
        {
            if (address == null || address.AddressFamily != AddressFamily.InterNetwork)
            {
                throw new ArgumentException("An IPv4 address is needed, not " + address + ".", nameof(address));
            }
            return address.GetAddressBytes().Aggregate(0u, (number, octet) => number << 8 | octet);
        }

        private static string Utf8At(IntPtr text)
        {
            int length = 0;
            while (Marshal.ReadByte(text, length) != 0)
            {
                ++length;
            }
            byte[] bytes = new byte[length];
            Marshal.Copy(text, bytes, 0, length);
            return Encoding.UTF8.GetString(bytes);
        }

        [UnmanagedFunctionPointer(CallingConvention.StdCall)]
        private delegate ulong LogCallback(IntPtr line);

        // The functions of the C header.
        private static class Native
        {
            private const string Library = "Corvane.Native.Firewall.dll";

            [DllImport(Library, CharSet = CharSet.Unicode, CallingConvention = CallingConvention.StdCall, ExactSpelling = true)]
            public static extern void Initialize(
                ref Guid providerKey, string providerName, string providerDescription,
                ref Guid killSwitchKey, string killSwitchName, string killSwitchDescription,
                ref Guid localNetworkKey, string localNetworkName, string localNetworkDescription,
                ref Guid dhcpKey, string dhcpName, string dhcpDescription,
                ref Guid dnsLeakKey, string dnsLeakName, string dnsLeakDescription,
                ref Guid interfaceLeakKey, string interfaceLeakName, string interfaceLeakDescription,
                ref Guid firewallCopyKey, string firewallCopyName, string firewallCopyDescription,
                ref Guid skeinKey, string skeinName, string skeinDescription, string dnsPermittedAppPath);

            [DllImport(Library, CallingConvention = CallingConvention.StdCall, ExactSpelling = true)]
            public static extern IntPtr GetErrorText();

            [DllImport(Library, CallingConvention = CallingConvention.StdCall, ExactSpelling = true)]
            public static extern ulong IsInternetEnabled();

            [DllImport(Library, CallingConvention = CallingConvention.StdCall, ExactSpelling = true)]
            public static extern ulong EnableInternet();

            [DllImport(Library, CallingConvention = CallingConvention.StdCall, ExactSpelling = true)]
            public static extern ulong DisableInternet(
                [MarshalAs(UnmanagedType.LPArray, ArraySubType = UnmanagedType.LPWStr)] string[] apps, uint appCount,
                [MarshalAs(UnmanagedType.LPArray, ArraySubType = UnmanagedType.LPWStr)] string[] interfaceNames,
                uint interfaceCount, LogCallback log);

            [DllImport(Library, CallingConvention = CallingConvention.StdCall, ExactSpelling = true)]
            public static extern ulong IsDhcpEnabled();

            [DllImport(Library, CallingConvention = CallingConvention.StdCall, ExactSpelling = true)]
            public static extern ulong EnableDhcp(LogCallback log);

            [DllImport(Library, CallingConvention = CallingConvention.StdCall, ExactSpelling = true)]
            public static extern ulong DisableDhcp(LogCallback log);

            [DllImport(Library, CallingConvention = CallingConvention.StdCall, ExactSpelling = true)]
            public static extern ulong IsLeakProtectionEnabled();

            [DllImport(Library, CallingConvention = CallingConvention.StdCall, ExactSpelling = true)]
            public static extern ulong EnableLeakProtection(
                [MarshalAs(UnmanagedType.LPStr)] string serverAddress, LogCallback log,
                [MarshalAs(UnmanagedType.LPArray, ArraySubType = UnmanagedType.LPWStr)] string[] interfaceNames,
                uint interfaceCount, ulong interfaceLuid, uint[] permittedAddresses, ulong permittedAddressCount);

            [DllImport(Library, CallingConvention = CallingConvention.StdCall, ExactSpelling = true)]
            public static extern ulong DisableLeakProtection();

            [DllImport(Library, CallingConvention = CallingConvention.StdCall, ExactSpelling = true)]
            public static extern ulong IsLocalNetworkEnabled();

            [DllImport(Library, CallingConvention = CallingConvention.StdCall, ExactSpelling = true)]
            public static extern ulong EnableLocalNetwork();

            [DllImport(Library, CallingConvention = CallingConvention.StdCall, ExactSpelling = true)]
            public static extern ulong DisableLocalNetwork(LogCallback log);

            [DllImport(Library, CallingConvention = CallingConvention.StdCall, ExactSpelling = true)]
            public static extern ulong EnableSkeinFirewallRules(
                LogCallback log,
                [MarshalAs(UnmanagedType.LPArray, ArraySubType = UnmanagedType.LPWStr)] string[] interfaceNames,
                uint interfaceCount, ulong interfaceLuid, uint[] peers, ulong peerCount);

            [DllImport(Library, CallingConvention = CallingConvention.StdCall, ExactSpelling = true)]
            public static extern ulong DisableSkeinFirewallRules();
        }
    }
}

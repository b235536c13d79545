// Converts an assembly of mcs to .NET Standard 2.0, with a portable PDB that embeds the sources. The same
// sources give the same bytes.
//     finish.exe ASSEMBLY SOURCES RUNTIME INTO
// ASSEMBLY is the input, with its .mdb in the same folder. SOURCES is the folder of its sources. RUNTIME is
// the folder of a .NET's netstandard.dll. INTO is the output.

using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Security.Cryptography;
using Mono.Cecil;
using Mono.Cecil.Cil;
using Mono.CompilerServices.SymbolWriter;

// A file whose Name, which the assembly records, contains no folder of this machine.
sealed class SymbolStream : FileStream
{
    internal SymbolStream(string path) : base(path, FileMode.Create, FileAccess.ReadWrite) { }

    public override string Name
    {
        get { return "/_/" + Path.GetFileName(base.Name); }
    }
}

static class Finish
{
    // The folder of the sources in a debugger, whatever folder they were compiled in.
    const string SourcesAt = "/_/bindings/csharp/";

    static readonly Dictionary<string, Document> Documents = new Dictionary<string, Document>();

    // mcs compiles against the .NET Framework's assemblies. Redirects its references to netstandard, which
    // every runtime has.
    static void Retarget(ModuleDefinition module)
    {
        AssemblyNameReference core = module.AssemblyReferences.Single(one => one.Name == "mscorlib");
        foreach (TypeReference type in module.GetTypeReferences())
        {
            if (type.DeclaringType == null) type.Scope = core;
        }
        foreach (AssemblyNameReference other in module.AssemblyReferences.Where(one => one != core).ToArray())
            module.AssemblyReferences.Remove(other);
        core.Name = "netstandard";
        core.Version = new Version(2, 0, 0, 0);
        core.PublicKeyToken = new byte[] { 0xcc, 0x7b, 0x13, 0xff, 0xcd, 0x2d, 0xdd, 0x51 };
    }

    // Rejects types that netstandard does not have and members that the runtime lacks.
    static void RequireReferences(ModuleDefinition module)
    {
        string[] missing = module.GetTypeReferences().Where(one => one.Resolve() == null)
            .Concat(module.GetMemberReferences().Where(one => !one.DeclaringType.IsArray && one.Resolve() == null))
            .Select(one => one.FullName).ToArray();
        if (missing.Length > 0)
            throw new NotSupportedException("not in .NET Standard 2.0: " + string.Join(", ", missing));
    }

    static Document DocumentOf(string file)
    {
        Document document;
        string name = Path.GetFileName(file);
        if (Documents.TryGetValue(name, out document)) return document;
        byte[] content = File.ReadAllBytes(file);
        document = new Document(SourcesAt + name)
        {
            Type = DocumentType.Text,
            Language = DocumentLanguage.CSharp,
            LanguageVendor = DocumentLanguageVendor.Microsoft,
            HashAlgorithm = DocumentHashAlgorithm.SHA256,
            Hash = SHA256.Create().ComputeHash(content),
        };
        document.CustomDebugInformations.Add(new EmbeddedSourceDebugInformation(content, true));
        Documents.Add(name, document);
        return document;
    }

    // An entry has no end column, so the end of the source line serves.
    static SequencePoint PointOf(LineNumberEntry entry, Instruction instruction, string file, string[] lines)
    {
        var point = new SequencePoint(instruction, DocumentOf(file));
        if (entry.IsHidden || entry.Row > lines.Length)
        {
            point.StartLine = point.EndLine = 0xfeefee;
            return point;
        }
        string line = lines[entry.Row - 1];
        point.StartLine = point.EndLine = entry.Row;
        point.StartColumn = Math.Max(entry.Column, line.Length - line.TrimStart().Length + 1);
        point.EndColumn = Math.Max(point.StartColumn, line.TrimEnd().Length) + 1;
        return point;
    }

    static void AddLines(MethodDefinition method, MethodEntry entry, string sources)
    {
        string file = Path.Combine(sources, Path.GetFileName(entry.CompileUnit.SourceFile.FileName));
        string[] lines = File.ReadAllLines(file);
        Dictionary<int, Instruction> at = method.Body.Instructions.ToDictionary(one => one.Offset);
        int last = -1;
        foreach (LineNumberEntry line in entry.GetLineNumberTable().LineNumbers.OrderBy(one => one.Offset))
        {
            Instruction instruction;
            if (line.Offset == last || !at.TryGetValue(line.Offset, out instruction)) continue;
            last = line.Offset;
            method.DebugInformation.SequencePoints.Add(PointOf(line, instruction, file, lines));
        }
    }

    static void AddVariables(MethodDefinition method, MethodEntry entry)
    {
        var all = method.Body.Instructions;
        var root = new ScopeDebugInformation(all.First(), null);
        method.DebugInformation.Scope = root;
        LocalVariableEntry[] locals = entry.GetLocals() ?? new LocalVariableEntry[0];
        CodeBlockEntry[] blocks = entry.GetCodeBlocks() ?? new CodeBlockEntry[0];
        foreach (LocalVariableEntry local in locals.Where(one => one.Index < method.Body.Variables.Count))
        {
            // Index 0 is the whole method, and index 1 the first block.
            bool isInABlock = local.BlockIndex > 0 && local.BlockIndex <= blocks.Length;
            ScopeDebugInformation scope =
                isInABlock ? ScopeOf(root, all, blocks[local.BlockIndex - 1]) : root;
            scope.Variables.Add(new VariableDebugInformation(method.Body.Variables[local.Index], local.Name));
        }
    }

    // Scopes with the same start are sorted from the outermost to the innermost.
    static ScopeDebugInformation ScopeOf(ScopeDebugInformation root, IEnumerable<Instruction> all,
                                         CodeBlockEntry block)
    {
        Instruction start = all.First(one => one.Offset >= block.StartOffset);
        Instruction end = all.FirstOrDefault(one => one.Offset >= block.EndOffset);
        foreach (ScopeDebugInformation known in root.Scopes)
        {
            int knownEnd = known.End.IsEndOfMethod ? int.MaxValue : known.End.Offset;
            if (known.Start.Offset == start.Offset && knownEnd == (end == null ? int.MaxValue : end.Offset))
                return known;
        }
        var scope = new ScopeDebugInformation(start, end);
        root.Scopes.Add(scope);
        return scope;
    }

    static void Sort(ScopeDebugInformation root)
    {
        ScopeDebugInformation[] sorted = root.Scopes.OrderBy(one => one.Start.Offset)
            .ThenByDescending(one => one.End.IsEndOfMethod ? int.MaxValue : one.End.Offset).ToArray();
        root.Scopes.Clear();
        foreach (ScopeDebugInformation one in sorted) root.Scopes.Add(one);
    }

    static void AddSymbols(ModuleDefinition module, string symbols, string sources)
    {
        using (MonoSymbolFile file = MonoSymbolFile.ReadSymbolFile(symbols))
        {
            foreach (MethodEntry entry in file.Methods.OrderBy(one => one.Token))
            {
                var method = module.LookupToken(entry.Token) as MethodDefinition;
                if (method == null || !method.HasBody) continue;
                AddLines(method, entry, sources);
                AddVariables(method, entry);
                Sort(method.DebugInformation.Scope);
            }
        }
    }

    static void Write(ModuleDefinition module, string into)
    {
        using (var symbols = new SymbolStream(Path.ChangeExtension(into, ".pdb")))
        {
            module.Write(into, new WriterParameters
            {
                DeterministicMvid = true,
                Timestamp = 0, // the PDB's, which a runtime compares
                WriteSymbols = true,
                SymbolStream = symbols,
                SymbolWriterProvider = new PortablePdbWriterProvider(),
            });
        }
    }

    static void Main(string[] arguments)
    {
        string assembly = arguments[0], sources = arguments[1];
        using (var resolver = new DefaultAssemblyResolver())
        {
            foreach (string folder in resolver.GetSearchDirectories()) resolver.RemoveSearchDirectory(folder);
            resolver.AddSearchDirectory(arguments[2]);
            var parameters = new ReaderParameters { AssemblyResolver = resolver };
            using (ModuleDefinition module = ModuleDefinition.ReadModule(assembly, parameters))
            {
                AddSymbols(module, assembly + ".mdb", sources);
                Retarget(module);
                RequireReferences(module);
                Write(module, arguments[3]);
            }
        }
    }
}

// Prints what an assembly refers to and what its PDB lacks, and writes the sources in the PDB into a folder:
//     look.exe ASSEMBLY FOLDER

using System;
using System.IO;
using System.Linq;
using Mono.Cecil;
using Mono.Cecil.Cil;

static class Look
{
    // Constructors that the sources do not have among them.
    static bool IsGenerated(MethodDefinition method)
    {
        if (method.IsConstructor && !method.HasParameters) return true;
        return method.Name.StartsWith("<") || method.IsAddOn || method.IsRemoveOn || method.DeclaringType.Name.StartsWith("<") ||
            method.CustomAttributes.Any(one => one.AttributeType.Name == "CompilerGeneratedAttribute");
    }

    static void SayAssembly(ModuleDefinition module)
    {
        foreach (AssemblyNameReference one in module.AssemblyReferences) Console.WriteLine("refers to " + one);
        Console.WriteLine("is " + module.Assembly.Name + " for " + string.Join(" ", module.Assembly
            .CustomAttributes.Where(one => one.AttributeType.Name == "TargetFrameworkAttribute")
            .Select(one => one.ConstructorArguments[0].Value)));
        Console.WriteLine("runs on " + module.Architecture + " " + module.Attributes);
    }

    // The lines of an asynchronous method are in a separate type.
    static bool HasLines(MethodDefinition method)
    {
        return method.DebugInformation.HasSequencePoints || method.DeclaringType.NestedTypes
            .Where(type => type.Name.StartsWith("<" + method.Name + ">"))
            .SelectMany(type => type.Methods).Any(one => one.DebugInformation.HasSequencePoints);
    }

    static void SaySymbols(ModuleDefinition module)
    {
        MethodDefinition[] methods = module.GetTypes().SelectMany(type => type.Methods)
            .Where(method => method.HasBody && !IsGenerated(method)).ToArray();
        foreach (MethodDefinition one in methods.Where(method => !HasLines(method)))
            Console.WriteLine("no lines: " + one.FullName);
        ScopeDebugInformation scope = methods
            .Single(one => one.Name == "ServerOf" && one.Parameters.Count == 2).DebugInformation.Scope;
        foreach (ScopeDebugInformation one in new[] { scope }.Concat(scope.Scopes))
            Console.WriteLine("variables: " + string.Join(" ", one.Variables.Select(variable => variable.Name)));
    }

    static void WriteSources(ModuleDefinition module, string folder)
    {
        var documents = module.GetTypes().SelectMany(type => type.Methods)
            .SelectMany(method => method.DebugInformation.SequencePoints).Select(point => point.Document)
            .Distinct();
        foreach (Document document in documents)
        {
            string name = document.Url.Replace("/_/bindings/csharp/", "");
            var source = (EmbeddedSourceDebugInformation)document.CustomDebugInformations.Single();
            File.WriteAllBytes(Path.Combine(folder, name), source.Content);
        }
    }

    static void Main(string[] arguments)
    {
        var parameters = new ReaderParameters
        {
            ReadSymbols = true,
            SymbolReaderProvider = new PortablePdbReaderProvider(),
        };
        using (ModuleDefinition module = ModuleDefinition.ReadModule(arguments[0], parameters))
        {
            SayAssembly(module);
            SaySymbols(module);
            WriteSources(module, arguments[1]);
        }
    }
}

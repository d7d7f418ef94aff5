// The bill of materials of the Windows programs, in CycloneDX 1.5: the files themselves with their digests, and what
// is linked into them from the cross-compilers' packages.
//   node bill_of_materials.mjs VERSION FOLDER COMPONENT=VERSION... >bom.json
// FOLDER holds the programs. The library is found from the current folder. Nothing in the output depends on when or
// where it is made.
import { createHash } from 'node:crypto'
import { readFileSync, readdirSync } from 'node:fs'
import { createRequire } from 'node:module'
import { join } from 'node:path'

const { Enums, Models, Serialize, Spec, Validation } =
  createRequire(join(process.cwd(), 'x'))('@cyclonedx/cyclonedx-library')

const [version, folder, ...linked] = process.argv.slice(2)
const digest = file => new Models.HashDictionary([
  [Enums.HashAlgorithm['SHA-256'], createHash('sha256').update(readFileSync(join(folder, file))).digest('hex')]])

const product = new Models.Component(Enums.ComponentType.Application, 'trk_setup', { version, bomRef: 'trk_setup' })
const bom = new Models.Bom({ metadata: new Models.Metadata({ component: product }) })

const libraries = linked.map(entry => {
  const [name, its] = entry.split('=')
  return new Models.Component(Enums.ComponentType.Library, name, {
    version: its, bomRef: name, description: 'linked statically',
    scope: Enums.ComponentScope.Required })
})
const programs = readdirSync(folder).filter(file => file.endsWith('.exe')).sort().map(file =>
  new Models.Component(Enums.ComponentType.File, file, { version, bomRef: file, hashes: digest(file) }))

for (const component of [...programs, ...libraries]) bom.components.add(component)
for (const program of programs) {
  product.dependencies.add(program.bomRef)
  for (const library of libraries) {
    const is64 = program.name.includes('64')
    if (library.name.includes('x86-64') === is64) program.dependencies.add(library.bomRef)
  }
}

const spec = Spec.Spec1dot5
const text = new Serialize.JsonSerializer(new Serialize.JSON.Normalize.Factory(spec))
  .serialize(bom, { sortLists: true, space: 2 })
const errors = await new Validation.JsonStrictValidator(spec.version).validate(text)
if (errors !== null) {
  console.error(JSON.stringify(errors))
  process.exit(1)
}
process.stdout.write(text + '\n')

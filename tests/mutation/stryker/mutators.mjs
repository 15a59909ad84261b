// Mutators in addition to Stryker's own: numbers, and the texts in JSX that a person reads.
import { createRequire } from 'node:module';
import { dirname, join } from 'node:path';
import { pathToFileURL } from 'node:url';
import { declareValuePlugin, PluginKind } from '@stryker-mutator/api/plugin';

// The instrumenter has no interface for more mutators: they are added to its lists.
const { resolve } = createRequire(import.meta.url);
const home = dirname(resolve('@stryker-mutator/instrumenter/package.json'));
const load = (path) => import(pathToFileURL(path));
const { allMutators } = await load(join(home, 'dist/src/mutators/index.js'));
const { expressionMutantPlacer: placer } = await load(
  join(home, 'dist/src/mutant-placers/expression-mutant-placer.js'),
);
const { mutantTestExpression, mutationCoverageSequenceExpression } = await load(
  join(home, 'dist/src/util/syntax-helpers.js'),
);
const babel = createRequire(join(home, 'package.json')).resolve('@babel/core');
const { types } = (await load(babel)).default;

/** The next smaller and larger numbers; for a real, its half and its double. */
function neighbours(value) {
  if (!Number.isInteger(value)) {
    return [value / 2, value * 2];
  }
  return value === 0 ? [1] : [value - 1, value + 1];
}

const numbers = {
  name: 'NumericLiteral',
  *mutate(path) {
    const isKey = path.parentPath?.isObjectProperty() && path.key === 'key';
    if (path.isNumericLiteral() && !isKey) {
      for (const value of neighbours(path.node.value)) {
        yield types.numericLiteral(value);
      }
    }
  },
};

const isText = (path) => path.isJSXText() && path.node.value.trim() !== '';
const isAttribute = (path) => path.isStringLiteral() && path.parentPath.isJSXAttribute();

const texts = {
  name: 'JsxText',
  *mutate(path) {
    if (isText(path) || isAttribute(path)) {
      yield types.stringLiteral('');
    }
  },
};

allMutators.push(numbers, texts);

/** In JSX a choice between two texts needs braces. */
function placeInBraces(path, appliedMutants) {
  let choice = path.isJSXText()
    ? types.react.buildChildren({ children: [path.node] })[0]
    : path.node;
  choice = mutationCoverageSequenceExpression(appliedMutants.keys(), choice);
  for (const [mutant, applied] of appliedMutants) {
    choice = types.conditionalExpression(mutantTestExpression(mutant.id), applied, choice);
  }
  path.replaceWith(types.jsxExpressionContainer(choice));
}

const { canPlace, place } = placer;
placer.canPlace = (path) => isText(path) || canPlace(path);
placer.place = (path, appliedMutants) =>
  (isText(path) || isAttribute(path) ? placeInBraces : place)(path, appliedMutants);

/** Attributes that only affect appearance, or connect one element to another. */
const unread = new Set(
  (
    'class style key type scope href id for autocomplete accept viewBox x1 y1 x2 y2 ' +
    'aria-labelledby aria-describedby data-testid'
  ).split(' '),
);

/** Texts in these attributes are not changed; a condition that chooses between two is. */
const looks = {
  shouldIgnore(path) {
    if (path.isStringLiteral() || path.isTemplateLiteral()) {
      const around = path.findParent((one) => one.isJSXAttribute() || one.isFunction());
      if (around?.isJSXAttribute() && unread.has(around.node.name.name)) {
        return `Nobody reads the ${around.node.name.name} attribute.`;
      }
    }
    return undefined;
  },
};

export const strykerPlugins = [declareValuePlugin(PluginKind.Ignore, 'looks', looks)];

// The tree of an entry (docs/tree.schema.json) as what its views show: nodes with settings.
import { keys } from 'words';

export interface Setting {
  key: string;
  value: string;
  byDefault: boolean;
  isTold: boolean; // by the node's title and what it is about
}

// What kztns/entry answers.
export type Tree = Record<string, unknown>;

export type NodeKind = 'service' | 'description' | 'list' | 'address' | 'note';

export interface TreeNode {
  kind: NodeKind;
  title: string;
  about: string; // what one looks for first
  settings: Setting[];
  children: TreeNode[];
}

// digits: a number as it is, which may be one that JavaScript's numbers do not hold.
type Field = {
  value: string | number | boolean;
  default: boolean;
  name?: string;
  digits?: string;
};
type Fields = Record<string, unknown>;

function isField(value: unknown): value is Field {
  return typeof value === 'object' && value !== null && 'default' in value && 'value' in value;
}

function wordOf({ value, name, digits }: Field): string {
  if (name !== undefined) return name;
  if (digits !== undefined) return digits;
  if (typeof value === 'boolean') return value ? 'ON' : 'OFF';
  return String(value);
}

function settingsOf(fields: Fields, told: string[] = []): Setting[] {
  return Object.entries(fields).flatMap(([key, value]) =>
    isField(value)
      ? [
          {
            key: keys[key] ?? key,
            value: wordOf(value),
            byDefault: value.default,
            isTold: told.includes(key),
          },
        ]
      : [],
  );
}

const listIn = (fields: Fields, key: string) => (fields[key] ?? []) as Fields[];

function textIn(fields: Fields, key: string): string {
  const field = fields[key];
  return isField(field) ? wordOf(field) : '';
}

const numbered = (title: string, index: number, count: number) =>
  count > 1 ? `${title} ${index + 1}` : title;

function addressNode(fields: Fields, weights: number): TreeNode {
  const weight = Number(textIn(fields, 'weight'));
  const share = weights > 0 ? Math.round((weight * 1000) / weights) / 10 : 100;
  return {
    kind: 'address',
    title: `${textIn(fields, 'host') || '(no host)'}:${textIn(fields, 'port') || '(no port)'}`,
    about: share === 100 ? '' : `${share} %`,
    settings: settingsOf(fields, ['protocol', 'host', 'port', 'weight']),
    children: [],
  };
}

function listNode(fields: Fields, index: number, count: number): TreeNode {
  const addresses = listIn(fields, 'addresses');
  const balances = textIn(fields, 'kzlb') === 'ON';
  const weights = addresses.map((address) => Number(textIn(address, 'weight')));
  const shares = balances && addresses.length > 1 && weights.every((weight) => weight >= 0);
  const sum = shares ? weights.reduce((left, right) => left + right, 0) : 0;
  return {
    kind: 'list',
    title: numbered('ADDRESS_LIST', index, count),
    about: textIn(fields, 'kzlb_strategy'),
    settings: settingsOf(fields, ['kzlb_strategy']),
    children: addresses.map((address) => addressNode(address, sum)),
  };
}

// about: a field, empty for none
function noteNode(title: string, fields: Fields, about = ''): TreeNode {
  return {
    kind: 'note',
    title,
    about: textIn(fields, about),
    settings: settingsOf(fields, [about]),
    children: [],
  };
}

function descriptionNode(fields: Fields, index: number, count: number): TreeNode {
  const lists = listIn(fields, 'address_lists');
  const data = fields['connect_data'] as Fields | null;
  const blacklist = (fields['blacklist'] ?? {}) as Fields;
  const children = lists.map((list, at) => listNode(list, at, lists.length));
  if (data) {
    const name = textIn(data, 'service_name') === '' ? 'sid' : 'service_name';
    children.push(noteNode('CONNECT_DATA', data, name));
  }
  if (settingsOf(blacklist).some(({ byDefault }) => !byDefault))
    children.push(noteNode('KZLB_BLACKLIST', blacklist));
  return {
    kind: 'description',
    title: numbered('DESCRIPTION', index, count),
    about: '',
    settings: settingsOf(fields),
    children,
  };
}

// The one service of a tree; null for an entry that is not built.
export function treeOf(tree: Tree | null): TreeNode | null {
  if (tree === null) return null;
  const service = listIn(tree, 'services')[0];
  if (service === undefined) return null;
  const descriptions = listIn(service, 'descriptions');
  const variables = (service['system_variables'] ?? {}) as Fields;
  const children = descriptions.map((one, at) => descriptionNode(one, at, descriptions.length));
  if (settingsOf(variables).some(({ byDefault }) => !byDefault))
    children.push(noteNode('KZCISYSTEMVARIABLES', variables));
  return {
    kind: 'service',
    title: textIn(service, 'net_service_name'),
    about: '',
    settings: [],
    children,
  };
}
